#include "platform/desktop/LazySoundOutput.h"

#include "platform/desktop/ModuleLoader.h"
#include "platform/desktop/SoundModule.h"

#include <QFileInfo>
#include <optional>
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
    QString name;
    float volume = 1;
    std::optional<std::chrono::steady_clock::time_point> played = {}; ///< When it should have been heard.
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
        m_waiting->played = std::chrono::steady_clock::now();
        if (m_waiting->player)
            m_waiting->player->play();
    }

private:
    std::shared_ptr<Waiting> m_waiting;
};

LazySoundOutput::LazySoundOutput() : LazySoundOutput(loadModule) {}

LazySoundOutput::LazySoundOutput(std::function<Loaded()> load, std::chrono::milliseconds bound)
    : m_load(std::move(load)), m_bound(bound) {
    m_arrival.setInterval(arrivalPause);
    QObject::connect(&m_arrival, &QTimer::timeout, [this] { playWaiting(); });
}

bool LazySoundOutput::fileExists(const QString& path) const {
    return QFileInfo::exists(path);
}

std::unique_ptr<AudioPlayer> LazySoundOutput::playerForFile(const QUrl& url) {
    auto* loaded = output(patience);
    return loaded ? loaded->playerForFile(url) : nullptr;
}

std::unique_ptr<AudioPlayer> LazySoundOutput::systemSound(const QString& name) {
    if (auto* loaded = output(patience))
        return loaded->systemSound(name);
    if (!m_loading.valid())
        return nullptr;
    auto waiting = std::make_shared<Waiting>(Waiting{name});
    m_waiting.emplace_back(waiting);
    m_arrival.start();
    return std::make_unique<WaitingPlayer>(std::move(waiting));
}

void LazySoundOutput::playWaiting() {
    auto* loaded = output({});
    if (!loaded && m_loading.valid())
        return;
    m_arrival.stop();
    for (const auto& each : std::exchange(m_waiting, {})) {
        const auto waiting = each.lock();
        if (!waiting || !loaded)
            continue;
        waiting->player = loaded->systemSound(waiting->name);
        if (!waiting->player)
            continue;
        waiting->player->setVolume(waiting->volume);
        if (waiting->played && std::chrono::steady_clock::now() - *waiting->played <= m_bound)
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

SoundOutput* LazySoundOutput::output(std::chrono::milliseconds patience) {
    prepare();
    if (m_loading.valid() && m_loading.wait_for(patience) == std::future_status::ready)
        m_output = m_loading.get();
    return m_output.get();
}

} // namespace framora
