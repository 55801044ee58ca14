#pragma once

#include "desktop/support/CompositorScript.h"
#include "desktop/support/DesktopSession.h"

#include <QImage>
#include <QPointF>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace framora {

struct ScriptedPieces;

/// A compositor that shows nothing and answers as a test tells it, on a socket of its own and a thread of the
/// test. It offers just what a CompositorScript names. What it does by itself is right; what is wrong in it
/// was asked for.
///
/// All functions may be called from any thread, and return when the compositor has done it. Its clients hear
/// of it in that order.
class ScriptedCompositor : public DesktopSession {
public:
    explicit ScriptedCompositor(CompositorScript script = {});
    ~ScriptedCompositor();

    /// The absolute path of its socket, which programs that are started here find in WAYLAND_DISPLAY.
    QString socketPath() const;

    void perform(const std::function<void(ScriptedPieces&)>& action);
    template <class T> T ask(const std::function<T(ScriptedPieces&)>& question) {
        T answer{};
        perform([&](ScriptedPieces& pieces) { answer = question(pieces); });
        return answer;
    }

    /// How many programs are connected.
    int clients();
    /// How often an output was to be copied.
    int copiesAsked();
    /// What an output shows, as its panel hangs.
    QImage picture(const QString& output = QStringLiteral("ONE"));
    /// What a layer surface on it shows; null while none does.
    QImage shown(const QString& output = QStringLiteral("ONE"));
    int layerSurfaces();

    void addOutput(const ScriptedOutput& output);
    /// The layer surfaces on it are closed, as on real compositors, unless told otherwise.
    void removeOutput(const QString& output, bool closeSurfaces = true);
    void changeOutput(const QString& output, const std::function<void(ScriptedOutput&)>& edit);
    void closeSurfaces(const QString& output = QStringLiteral("ONE"));
    void configureSurfaces(QSize size);

    void setCapabilities(std::uint32_t capabilities);
    /// In logical pixels of that output's layer surface.
    void pointTo(QPointF position, const QString& output = QStringLiteral("ONE"));
    void press(std::uint32_t button);
    void release(std::uint32_t button);
    void key(std::uint32_t code); ///< Pressed and let go.

    /// From now on nothing is read and nothing answered; connections are still taken, by the kernel.
    void freeze();
    void thaw();
    /// The socket and all connections are gone.
    void die();

private:
    void run();
    void drain();

    std::unique_ptr<ScriptedPieces> m_pieces;
    int m_wake = -1;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::function<void()>> m_tasks;
    bool m_frozen = false;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace framora
