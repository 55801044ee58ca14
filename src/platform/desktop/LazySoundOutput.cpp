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
constexpr std::chrono::milliseconds arrivalPause{10};

std::unique_ptr<SoundOutput> loadModule() {
    const auto make =
        reinterpret_cast<MakeSoundOutput*>(moduleFunction("framora-sound", makeSoundOutputName));
    return std::unique_ptr<SoundOutput>(make ? make() : nullptr);
}

} // namespace

struct LazySoundOutput::Waiting {
    MakePlayer make;
    float volume = 1;
    bool plays = false;
    std::unique_ptr<AudioPlayer> player = {}; ///< Once the output is there, if it has one.
};

class LazySoundOutput::WaitingPlayer final : public AudioPlayer {
public:
    explicit WaitingPlayer(std::shared_ptr<Waiting> waiting) : m_waiting(std::move(waiting)) {}
    void setVolume(float volume) override {
        m_waiting->volume = volume;
        if (m_waiting->player)
            m_waiting->player->setVolume(volume);
    }
    void play() override {
        m_waiting->plays = true;
        if (m_waiting->player)
            m_waiting->player->play();
    }

private:
    std::shared_ptr<Waiting> m_waiting;
};

LazySoundOutput::LazySoundOutput() : LazySoundOutput(loadModule) {}

LazySoundOutput::LazySoundOutput(std::function<Loaded()> load) : m_load(std::move(load)) {
    m_arrival.setInterval(arrivalPause);
    QObject::connect(&m_arrival, &QTimer::timeout, [this] { playWaiting(); });
}

bool LazySoundOutput::fileExists(const QString& path) const {
    return QFileInfo::exists(path);
}

std::unique_ptr<AudioPlayer> LazySoundOutput::playerForFile(const QUrl& url) {
    return player([url](SoundOutput& loaded) { return loaded.playerForFile(url); });
}

std::unique_ptr<AudioPlayer> LazySoundOutput::systemSound(const QString& name) {
    return player([name](SoundOutput& loaded) { return loaded.systemSound(name); });
}

std::unique_ptr<AudioPlayer> LazySoundOutput::player(const MakePlayer& make) {
    if (auto* loaded = output())
        return make(*loaded);
    if (!m_loading.valid())
        return nullptr;
    auto waiting = std::make_shared<Waiting>(Waiting{make});
    m_waiting.emplace_back(waiting);
    m_arrival.start();
    return std::make_unique<WaitingPlayer>(std::move(waiting));
}

void LazySoundOutput::playWaiting() {
    auto* loaded = output();
    if (!loaded && m_loading.valid())
        return;
    m_arrival.stop();
    for (const auto& each : std::exchange(m_waiting, {})) {
        const auto waiting = each.lock();
        if (!waiting || !loaded)
            continue;
        waiting->player = waiting->make(*loaded);
        if (!waiting->player)
            continue;
        waiting->player->setVolume(waiting->volume);
        if (waiting->plays)
            waiting->player->play();
    }
}

void LazySoundOutput::prepare() {
    if (std::exchange(m_started, true))
        return;
    std::packaged_task<Loaded()> task(m_load);
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
