#pragma once

#include <QImage>
#include <QPointF>
#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace framora {

/// A Wayland program whose every device pixel is known: a window, or the picture behind all windows of an
/// output. It runs on a thread and a connection of its own.
class PaintedSurface {
public:
    struct Options {
        QImage picture;         ///< Shown pixel for pixel where the output's scale is picture / size.
        QSize size;             ///< Logical.
        QString title;          ///< Of the window; the application id is "painted".
        QString output;         ///< Not empty: a background of the output of that name instead of a window.
        bool onOverlay = false; ///< With `output`: in front of everything, at its top left corner.
    };

    /// Returns when the compositor has shown it. Throws std::runtime_error when it does not.
    PaintedSurface(const QString& waylandDisplay, const Options& options);
    ~PaintedSurface();
    PaintedSurface(const PaintedSurface&) = delete;
    PaintedSurface& operator=(const PaintedSurface&) = delete;

    const QImage& picture() const { return m_options.picture; }
    /// Where in the surface a button was pressed, in order.
    std::vector<QPointF> clicks() const;

    /// Device pixels all different from their neighbours, so that a shift, a copy at another scale or a blur
    /// shows. Opaque.
    static QImage pattern(const QSize& size, int seed = 1);

private:
    struct Connection;
    void run();

    Options m_options;
    std::unique_ptr<Connection> m_connection;
    std::thread m_thread;
    int m_stopDescriptor = -1;
};

} // namespace framora
