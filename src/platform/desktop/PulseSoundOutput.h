#pragma once

#include "platform/SoundOutput.h"
#include "platform/desktop/SoundTheme.h"

#include <memory>

namespace framora {

/// Plays sound files through the PulseAudio protocol, one at a time, on a thread of its own that starts with
/// the first sound. Without a sound server nothing is heard and nothing waits.
class PulseSoundOutput final : public SoundOutput {
public:
    explicit PulseSoundOutput(SoundTheme theme = SoundTheme::ofDesktop());
    ~PulseSoundOutput() override;

    bool fileExists(const QString& path) const override;
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    class Worker;
    class Player;

    SoundTheme m_theme;
    std::shared_ptr<Worker> m_worker;
};

} // namespace framora
