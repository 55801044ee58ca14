#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

struct xcb_connection_t;

namespace framora {

struct DesktopWindow {
    std::uint32_t id = 0;
    QString title;
    QString instanceName; ///< First half of WM_CLASS.
    QString className;    ///< Second half of WM_CLASS.
    QRect geometry;       ///< The client's area on the root window, without its frame.
    QRect frame;          ///< With what the window manager put around it.
    bool mapped = false;
    bool overrideRedirect = false;
};

/// A client of the virtual display that sees and does what a person would: it looks at windows and pixels,
/// and moves the pointer and presses keys through XTEST. Coordinates are pixels of the root window.
class DesktopDisplay {
public:
    enum class Button { left = 1, middle = 2, right = 3, wheelUp = 4, wheelDown = 5 };

    /// Throws std::runtime_error when the display does not answer.
    explicit DesktopDisplay(const QString& displayName);
    ~DesktopDisplay();
    DesktopDisplay(const DesktopDisplay&) = delete;
    DesktopDisplay& operator=(const DesktopDisplay&) = delete;

    // Seeing.
    QImage screenshot();
    QImage screenshot(const QRect& area);
    QColor pixelAt(const QPoint& position);
    /// Windows of programs in stacking order, the lowest first: what a window manager framed, and
    /// override-redirect ones. Unmapped ones only when asked for.
    std::vector<DesktopWindow> windows(bool alsoUnmapped = false);
    /// The topmost mapped window whose title or class contains the text; none is an empty optional.
    std::optional<DesktopWindow> windowTitled(const QString& text);
    std::optional<DesktopWindow> windowOfClass(const QString& text);
    /// What the window manager says is active, 0 for none.
    std::uint32_t activeWindow();
    std::uint32_t focusedWindow();
    /// Bounds of the part of a window that takes the pointer, on the root window; empty when clicks pass
    /// through.
    QRect inputArea(std::uint32_t window);
    /// Number of all windows below the root, mapped or not, at any depth.
    int windowCount();
    /// Window of the owner, 0 for none.
    std::uint32_t selectionOwner(const char* selection);
    bool selectionIsOwned(const char* selection) { return selectionOwner(selection) != 0; }
    bool rootPropertyExists(const char* name);
    /// Values of a property of 32-bit items; empty when it is missing.
    std::vector<std::uint32_t> cardinals(std::uint32_t window, const char* property);
    QPoint pointerPosition();
    QSize size() const;

    // Doing. Key names are X keysym names ("Shift_L", "Return", "a", "4").
    void moveTo(const QPoint& position);
    void press(Button button = Button::left);
    void release(Button button = Button::left);
    void click(const QPoint& position, Button button = Button::left);
    void doubleClick(const QPoint& position);
    /// Press at `from`, move in `steps`, release at `to`.
    void drag(const QPoint& from, const QPoint& to, int steps = 8);
    void keyDown(const char* key);
    void keyUp(const char* key);
    /// Presses the keys in order and releases them in reverse: key({"Shift_L", "Alt_L", "4"}).
    void key(std::initializer_list<const char*> keys);
    /// Text of printable ASCII, on the server's own layout.
    void type(const QString& text);

    void setWallpaper(const QImage& image);
    /// Asks the window manager to give a window the focus.
    void activate(std::uint32_t window);
    /// Asks a window to close, as its close button does.
    void requestClose(std::uint32_t window);

    xcb_connection_t* connection() const { return m_connection; }
    std::uint32_t root() const { return m_root; }
    std::uint32_t atom(const char* name);

private:
    struct KeyPlace {
        std::uint8_t code = 0;
        bool shifted = false;
    };
    void readKeyboard();
    KeyPlace placeOf(std::uint32_t keysym) const;
    /// Presses keys in order and lets them go in reverse.
    void stroke(const std::vector<std::uint8_t>& codes);
    void queue(std::uint8_t type, std::uint8_t detail, const QPoint& position = {});
    /// queue(), and the server has handled it.
    void fake(std::uint8_t type, std::uint8_t detail, const QPoint& position = {});
    void sync();
    QString text(std::uint32_t window, const char* property);
    void collect(std::uint32_t window, const QRect& frame, bool overrideRedirect, int depth,
                 bool alsoUnmapped, std::vector<DesktopWindow>& result);
    int countBelow(std::uint32_t window);

    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_root = 0;
    std::uint32_t m_wallpaper = 0;
    QHash<std::uint32_t, KeyPlace> m_keys;
    QHash<QByteArray, std::uint32_t> m_atoms;
};

} // namespace framora
