#include "platform/desktop/LazySoundOutput.h"

#include "platform/desktop/ModuleLoader.h"
#include "platform/desktop/SoundModule.h"

#include <QFileInfo>

namespace framora {

bool LazySoundOutput::fileExists(const QString& path) const {
    return QFileInfo::exists(path);
}

std::unique_ptr<AudioPlayer> LazySoundOutput::playerForFile(const QUrl& url) {
    auto* loaded = output();
    return loaded ? loaded->playerForFile(url) : nullptr;
}

std::unique_ptr<AudioPlayer> LazySoundOutput::systemSound(const QString& name) {
    auto* loaded = output();
    return loaded ? loaded->systemSound(name) : nullptr;
}

SoundOutput* LazySoundOutput::output() {
    if (!std::exchange(m_tried, true)) {
        const auto make =
            reinterpret_cast<MakeSoundOutput*>(moduleFunction("framora-sound", makeSoundOutputName));
        if (make)
            m_output.reset(make());
    }
    return m_output.get();
}

} // namespace framora
