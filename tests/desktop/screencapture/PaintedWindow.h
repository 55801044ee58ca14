#pragma once

#include <QImage>
#include <QRect>
#include <QString>

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

struct xcb_connection_t;

namespace framora {

/// A window of another program, every pixel of which is known. It paints when the server asks for it, on a
/// thread and a connection of its own, as a program would.
class PaintedWindow {
public:
    struct Options {
        QRect geometry;
        int seed = 1;
        bool argb = false; ///< 32 bits of depth, with transparent corners and a translucent stripe.
        bool overrideRedirect = false;
        std::vector<QRect> shape = {};         ///< Bounding shape in the window; none: rectangular.
        std::array<std::uint32_t, 4> shadow{}; ///< Invisible margins: left, right, top, bottom.
        bool desktop = false;                  ///< The window a desktop's icons stand on.
        bool clickThrough = false;             ///< An empty input shape.
        int paintDelay = 0;                    ///< Milliseconds from an exposure to the painting.
    };

    PaintedWindow(const QString& displayName, const Options& options);
    ~PaintedWindow();
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    std::uint32_t id() const { return m_window; }
    /// What it paints, without regard to its shape.
    const QImage& picture() const { return m_picture; }
    bool painted() const { return m_paints > 0; }
    int paints() const { return m_paints; }
    /// Asks once more to be shown.
    void map();

private:
    void run();
    void paint();

    Options m_options;
    QImage m_picture;
    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_window = 0;
    std::uint32_t m_gc = 0;
    int m_depth = 24;
    std::atomic<int> m_paints = 0;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};

} // namespace framora
