#pragma once

/// Every notification's name, in one place.
namespace framora::notifications {

inline constexpr char hotkeyConfigurationChanged[] = "HotkeyConfigurationChanged";
inline constexpr char dockIconChanged[] = "DockIconChanged";
inline constexpr char accessibilityPermissionsGranted[] = "AccessibilityPermissionsGranted";
inline constexpr char permissionsStatusChanged[] = "PermissionsStatusChanged";
inline constexpr char settingsChanged[] = "SettingsChanged";
/// Posted by the desktop when one of the program's windows becomes active and none was before.
inline constexpr char applicationDidBecomeActive[] = "ApplicationDidBecomeActive";
/// Posted by the desktop when it binds the global shortcuts otherwise.
inline constexpr char shortcutBindingsChanged[] = "ShortcutBindingsChanged";
/// Posted by the desktop when keys print something else from now on.
inline constexpr char keyboardLayoutChanged[] = "KeyboardLayoutChanged";
/// Posted by the desktop when it turns dark or light, or takes another accent colour.
inline constexpr char appearanceChanged[] = "AppearanceChanged";
/// Posted when the window system ended the program's connection, which cannot be made again: only a program
/// that starts again has one.
inline constexpr char connectionEnded[] = "ConnectionEnded";

inline constexpr char editorToolbarCopy[] = "ScreenshotEditorToolbarCopy";
inline constexpr char editorToolbarSave[] = "ScreenshotEditorToolbarSave";
inline constexpr char editorToolbarReset[] = "ScreenshotEditorToolbarReset";
inline constexpr char editorToolbarZoomFit[] = "ScreenshotEditorToolbarZoomFit";
inline constexpr char editorToolbarZoomActual[] = "ScreenshotEditorToolbarZoomActual";
inline constexpr char editorMiniaturize[] = "ScreenshotEditorMiniaturize";
inline constexpr char editorZoomWindow[] = "ScreenshotEditorZoomWindow";

} // namespace framora::notifications
