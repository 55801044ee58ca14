pragma Singleton
import QtQuick

/// The palette and measures of every window. A window's root view sets `dark`, `accent` and `reducedMotion`; everything
/// else follows. Measures are points, on a grid of 4 with halves of it inside of controls.
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
    /// In ms. X tells of each repeat of a held key by a release and a press, and the toolkit takes some of these
    /// releases for real ones: the press that follows in this time tells them apart. (Tests set another.)
    property int keySettling: Qt.platform.pluginName === "xcb" ? 20 : 0
    // Small texts: both stand out at 4.5 : 1 at least from what they stand on, the third not from what is
    // pointed at or pressed.
    readonly property color secondaryText: dark ? "#b6b9c1" : "#565962"
    readonly property color tertiaryText: dark ? "#a3a6af" : "#656872"
    readonly property color fill: dark ? "#33353b" : "#ebecf0"
    readonly property color hoverFill: dark ? "#3b3e44" : "#e0e2e7"
    readonly property color pressedFill: dark ? "#45484f" : "#d4d6dd"
    readonly property color raised: dark ? "#4a4d55" : "#ffffff"
    readonly property color raisedOutline: dark ? "#555860" : "#d2d4da"
    readonly property color knob: dark ? "#e9eaee" : "#ffffff"
    readonly property color disabledKnob: dark ? "#54575e" : "#f4f5f7"
    readonly property color knobOutline: dark ? "#1a1b1d" : "#c0c3cb"
    /// Around colours that may be those of the ground.
    readonly property color swatchOutline: dark ? "#5a5d65" : "#c0c3cb"
    /// The ground of what is chosen, where the accent itself would be too loud.
    readonly property color accentTint: Qt.rgba(accent.r, accent.g, accent.b, dark ? 0.26 : 0.12)
    /// The accent where it is drawn thinly, as in a symbol.
    readonly property color accentInk: dark ? Qt.lighter(accent, 1.3) : accent
    /// Text on the accent: whichever of black and white reads better.
    readonly property color accentText:
        accent.r * 0.299 + accent.g * 0.587 + accent.b * 0.114 > 0.66 ? "#16171a" : "#ffffff"

    readonly property string fontFamily: "Inter"
    readonly property string monospacedFamily: "JetBrains Mono"
    readonly property int sidebarWidth: 344
    readonly property int headerHeight: 52
    /// The column of captions in front of controls.
    readonly property int captionWidth: 80
    readonly property int radius: 8
    readonly property int cardRadius: 12
    readonly property int shortMotion: reducedMotion ? 0 : 120
    readonly property int motion: reducedMotion ? 0 : 180

    /// The fill of a quiet control in its state.
    function stateFill(hovered: bool, pressed: bool): color {
        return pressed ? pressedFill : hovered ? hoverFill : fill;
    }
}
