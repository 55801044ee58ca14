#include "platform/desktop/LazySoundOutput.h"

#include "platform/desktop/ModuleLoader.h"
#include "platform/desktop/SoundModule.h"

#include <QFileInfo>
#include <chrono>
#include <thread>
#include <utility>

namespace framora {

namespace {

/// The most that one sound may hold its caller up.
constexpr std::chrono::milliseconds patience{3};

} // namespace

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

void LazySoundOutput::prepare() {
    if (std::exchange(m_started, true))
        return;
    std::packaged_task<Loaded()> task([] {
        const auto make =
            reinterpret_cast<MakeSoundOutput*>(moduleFunction("framora-sound", makeSoundOutputName));
        return Loaded(make ? make() : nullptr);
    });
    m_loading = task.get_future();
    std::thread(std::move(task)).detach();
}

SoundOutput* LazySoundOutput::output() {
    prepare();
    if (m_loading.valid() && m_loading.wait_for(patience) == std::future_status::ready)
        m_output = m_loading.get();
    return m_output.get();
}

} // namespace framora
