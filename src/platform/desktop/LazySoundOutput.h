#pragma once

#include "platform/SoundOutput.h"

#include <QTimer>
#include <functional>
#include <future>
#include <memory>
#include <vector>

namespace framora {

/// The sound output, loaded with the first sound: most of the time a resident program is silent.
class LazySoundOutput final : public SoundOutput {
public:
    using Loaded = std::unique_ptr<SoundOutput>;

    LazySoundOutput();
    /// `load` runs once, on another thread; null for nothing that could sound.
    explicit LazySoundOutput(std::function<Loaded()> load);

    /// Begins to load it in the background, when a sound is to be expected soon. A sound that comes before
    /// that is done is heard once it is.
    void prepare();

    bool fileExists(const QString& path) const override;
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    class WaitingPlayer;
    struct Waiting;
    using MakePlayer = std::function<std::unique_ptr<AudioPlayer>(SoundOutput&)>;

    /// One of the loaded output, or one that plays when it is there. Null where the module is missing.
    std::unique_ptr<AudioPlayer> player(const MakePlayer& make);
    /// Null where the module is missing, or is not there yet.
    SoundOutput* output();
    void playWaiting();

    const std::function<Loaded()> m_load;
    std::vector<std::weak_ptr<Waiting>> m_waiting;
    QTimer m_arrival;              ///< Runs while somebody waits.
    std::future<Loaded> m_loading; ///< Valid while it is under way.
    Loaded m_output;
    bool m_started = false;
};

} // namespace framora
