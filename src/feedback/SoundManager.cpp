#include "feedback/SoundManager.h"

#include <QUrl>
#include <array>

namespace framora {

SoundManager::SoundManager() = default;

SoundManager::SoundManager(SoundOutput& output) : m_output(&output) {}

SoundManager::~SoundManager() = default;

SoundManager& SoundManager::shared() {
    static SoundManager manager;
    return manager;
}

void SoundManager::setSharedOutput(SoundOutput& output) {
    shared().m_output = &output;
}

void SoundManager::endSharedOutput() {
    SoundManager& manager = shared();
    manager.m_audioPlayer.reset();
    manager.m_systemSound.reset();
    manager.m_output = nullptr;
}

void SoundManager::play(CaptureSound sound, float volume) {
    if (!m_output)
        return;
    const std::string_view raw = rawValue(sound);
    const QString name = QString::fromLatin1(raw.data(), qsizetype(raw.size()));
    // The two folders' extensions differ: .aiff and .aif.
    const std::array candidates{QStringLiteral("/System/Library/Sounds/%1.aiff").arg(name),
                                QStringLiteral("/System/Library/Components/CoreAudio.component/Contents/"
                                               "SharedSupport/SystemSounds/system/%1.aif")
                                    .arg(name)};
    for (const QString& path : candidates) {
        const QUrl url(QStringLiteral("file://") + path);
        if (!url.isValid() || !m_output->fileExists(path))
            continue;
        auto player = m_output->playerForFile(url);
        if (!player)
            continue;
        m_audioPlayer = std::move(player);
        m_audioPlayer->setVolume(volume);
        m_audioPlayer->play();
        return;
    }
    if (auto player = m_output->systemSound(name)) {
        m_systemSound = std::move(player);
        m_systemSound->setVolume(volume);
        m_systemSound->play();
    }
}

} // namespace framora
