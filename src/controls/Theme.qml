pragma Singleton
import QtQuick

/// The palette and measures of every window. A window's root view sets `dark` and `accent`; everything else follows.
QtObject {
    property bool dark: false
    property color accent: "#3d6df2"
    property bool reducedMotion: false

    readonly property color ground: dark ? "#141517" : "#e9eaed"
    readonly property color surface: dark ? "#1d1e21" : "#f6f6f8"
    readonly property color card: dark ? "#26272b" : "#ffffff"
    readonly property color hairline: dark ? "#33353a" : "#dfe0e5"
    readonly property color outline: dark ? "#3d4046" : "#d2d4da"
    readonly property color text: dark ? "#f2f3f5" : "#1a1b1e"
    readonly property color secondaryText: dark ? "#acafb7" : "#565962"
    readonly property color tertiaryText: dark ? "#8a8d96" : "#757882"
    readonly property color fill: dark ? "#33353b" : "#ebecf0"
    readonly property color hoverFill: dark ? "#3b3e44" : "#e0e2e7"
    readonly property color pressedFill: dark ? "#45484f" : "#d4d6dd"
    readonly property color raised: dark ? "#4a4d55" : "#ffffff"
    readonly property color knob: dark ? "#e9eaee" : "#ffffff"
    /// Text on the accent: whichever of black and white reads better.
    readonly property color accentText:
        accent.r * 0.299 + accent.g * 0.587 + accent.b * 0.114 > 0.66 ? "#16171a" : "#ffffff"

    readonly property string fontFamily: "Inter"
    readonly property string monospacedFamily: "JetBrains Mono"
    readonly property int sidebarWidth: 344
    readonly property int headerHeight: 52
    readonly property int radius: 8
    readonly property int cardRadius: 12
    readonly property int shortMotion: reducedMotion ? 0 : 120
    readonly property int motion: reducedMotion ? 0 : 180

    /// The fill of a quiet control in its state.
    function stateFill(hovered: bool, pressed: bool): color {
        return pressed ? pressedFill : hovered ? hoverFill : fill;
    }
}
