#pragma once

#include "platform/SoundOutput.h"

#include <QTimer>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <vector>

namespace framora {

/// The sound output, loaded with the first sound: most of the time a resident program is silent.
class LazySoundOutput final : public SoundOutput {
public:
    using Loaded = std::unique_ptr<SoundOutput>;

    /// How late a sound may be: after that nobody expects it.
    static constexpr std::chrono::milliseconds latest{3000};

    LazySoundOutput();
    /// `load` runs once, on another thread; null for nothing that could sound.
    explicit LazySoundOutput(std::function<Loaded()> load, std::chrono::milliseconds bound = latest);

    /// Begins to load it in the background, when a sound is to be expected soon. A system sound that comes
    /// before that is done is heard once it is.
    void prepare();

    bool fileExists(const QString& path) const override;
    /// Nothing before it is loaded, either: whether the file can be played is not known yet.
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    /// One of the loaded output, or one that plays when it is there. Nothing where the module is missing.
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    class WaitingPlayer;
    struct Waiting;

    /// Null where the module is missing, or is not there within `patience`.
    SoundOutput* output(std::chrono::milliseconds patience);
    void playWaiting();

    const std::function<Loaded()> m_load;
    const std::chrono::milliseconds m_bound;
    std::vector<std::weak_ptr<Waiting>> m_waiting;
    QTimer m_arrival;              ///< Runs while somebody waits.
    std::future<Loaded> m_loading; ///< Valid while it is under way.
    Loaded m_output;
    bool m_started = false;
};

} // namespace framora
