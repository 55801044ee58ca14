#pragma once

#include "platform/SoundOutput.h"
#include "settings/CaptureSound.h"

#include <memory>

namespace framora {

/// Plays the capture sounds. Main thread only; nothing is cached and no failure is reported.
class SoundManager {
public:
    /// The output outlives the manager.
    explicit SoundManager(SoundOutput& output);
    ~SoundManager();
    SoundManager(const SoundManager&) = delete;
    SoundManager& operator=(const SoundManager&) = delete;

    /// The one that captures and the settings window share; it plays nothing before setSharedOutput().
    static SoundManager& shared();
    /// What the shared manager plays through, until endSharedOutput().
    static void setSharedOutput(SoundOutput& output);
    /// Cuts off what the shared manager plays and lets its output go: from here on it plays nothing.
    static void endSharedOutput();

    /// Plays `sound` at `volume` (linear, 0 to 1; 0 plays it unheard) in place of the one started last.
    /// Returns at once.
    void play(CaptureSound sound, float volume);

private:
    SoundOutput* m_output = nullptr;
    std::unique_ptr<AudioPlayer> m_audioPlayer;
    /// The desktop's sound that was asked for last, kept so that it is heard to its end.
    std::unique_ptr<AudioPlayer> m_systemSound;

    SoundManager();
};

} // namespace framora
