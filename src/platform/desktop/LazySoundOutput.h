#pragma once

#include "platform/SoundOutput.h"

#include <future>
#include <memory>

namespace framora {

/// The sound output, loaded with the first sound: most of the time a resident program is silent.
class LazySoundOutput final : public SoundOutput {
public:
    /// Begins to load it in the background, when a sound is to be expected soon. A sound that comes before
    /// that is done waits for it a little, and is not heard when it takes longer.
    void prepare();

    bool fileExists(const QString& path) const override;
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    using Loaded = std::unique_ptr<SoundOutput>;

    /// Null where the module is missing, or is not there yet: nothing plays then.
    SoundOutput* output();

    std::future<Loaded> m_loading; ///< Valid while it is under way.
    Loaded m_output;
    bool m_started = false;
};

} // namespace framora
