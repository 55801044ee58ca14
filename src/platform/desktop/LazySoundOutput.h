#pragma once

#include "platform/SoundOutput.h"

namespace framora {

/// The sound output, loaded with the first sound: most of the time a resident program is silent.
class LazySoundOutput final : public SoundOutput {
public:
    bool fileExists(const QString& path) const override;
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override;
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override;

private:
    /// Null where the module is missing: nothing plays then.
    SoundOutput* output();

    std::unique_ptr<SoundOutput> m_output;
    bool m_tried = false;
};

} // namespace framora
