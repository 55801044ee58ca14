#pragma once

#include "platform/SoundOutput.h"
#include "platform/desktop/SoundTheme.h"

#include <functional>
#include <memory>

namespace framora {

/// Plays sound files through the PulseAudio protocol, one at a time, on a thread of its own that starts with
/// the first sound. What may take long happens on threads: looking up and opening a sound of the theme, which
/// may stand on a network's disk, and talking to the server. Without a sound server, or with a file that does
/// not answer, nothing is heard and nothing waits.
class PulseSoundOutput final : public SoundOutput {
public:
    /// Asked for each of the desktop's sounds, on a thread of its own.
    using ThemeSource = std::function<SoundTheme()>;

    explicit PulseSoundOutput(ThemeSource theme = &SoundTheme::ofDesktop);
    ~PulseSoundOutput() override;

    bool fileExists(const QString& path) const override;
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    class Worker;
    class Player;

    ThemeSource m_theme;
    std::shared_ptr<Worker> m_worker;
};

} // namespace framora
