#include "platform/desktop/PulseSoundOutput.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <pulse/error.h>
#include <pulse/simple.h>
#include <sndfile.h>
#include <thread>
#include <vector>

namespace framora {
namespace {

/// The sound theme's names for the sounds that captures know.
QString themeName(const QString& sound) {
    static const QHash<QString, QString> names{
        {QStringLiteral("Hero"), QStringLiteral("complete")},
        {QStringLiteral("Submarine"), QStringLiteral("message-new-instant")},
        {QStringLiteral("Blow"), QStringLiteral("screen-capture")},
        {QStringLiteral("Frog"), QStringLiteral("camera-shutter")},
        {QStringLiteral("Funk"), QStringLiteral("device-added")},
        {QStringLiteral("Sosumi"), QStringLiteral("bell")},
        {QStringLiteral("Basso"), QStringLiteral("dialog-error")},
        {QStringLiteral("Pop"), QStringLiteral("message")},
    };
    return names.value(sound);
}

struct SoundFileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, SoundFileCloser>;

struct StreamCloser {
    void operator()(pa_simple* stream) const { pa_simple_free(stream); }
};
using Stream = std::unique_ptr<pa_simple, StreamCloser>;

struct OpenedFile {
    SoundFile file;
    SF_INFO format{};
};

/// Null when it is no sound that can be played.
OpenedFile openFile(const QString& path) {
    OpenedFile opened;
    if (path.isEmpty())
        return opened;
    opened.file.reset(sf_open(QFile::encodeName(path).constData(), SFM_READ, &opened.format));
    if (opened.format.channels < 1 || opened.format.samplerate < 1)
        opened.file.reset();
    return opened;
}

/// On a thread that nobody waits for in the end: a disk that does not answer keeps that thread alone.
std::future<OpenedFile> openLater(std::function<QString()> path) {
    std::packaged_task<OpenedFile()> task([path = std::move(path)] { return openFile(path()); });
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    return result;
}

/// One sound that waits or plays. The player's thread hands it over; the worker alone reads the file.
struct Playback {
    std::future<OpenedFile> opening; ///< Valid while the file is not there yet.
    OpenedFile opened;
    std::atomic<float> volume = 1;
    std::atomic<bool> stopped = false;
};

/// False when there is nothing to play, or it would come so late that nobody expects it.
bool waitForFile(Playback& playback) {
    constexpr std::chrono::milliseconds pause{20};
    constexpr int mostPauses = 150;
    for (int pauses = 0; playback.opening.valid(); ++pauses) {
        if (playback.opening.wait_for(pause) == std::future_status::ready)
            playback.opened = playback.opening.get();
        else if (playback.stopped || pauses >= mostPauses)
            return false;
    }
    return playback.opened.file != nullptr;
}

void run(Playback& playback) {
    if (!waitForFile(playback))
        return;
    const SF_INFO& format = playback.opened.format;
    SNDFILE* file = playback.opened.file.get();
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, std::uint32_t(format.samplerate),
                              std::uint8_t(format.channels)};
    if (!pa_sample_spec_valid(&spec))
        return;
    // A short buffer, so that a sound which is cut off falls silent at once.
    pa_buffer_attr buffer{};
    buffer.maxlength = std::uint32_t(-1);
    // Starts as soon as there is something to start with.
    buffer.prebuf = std::uint32_t(pa_usec_to_bytes(10'000, &spec));
    buffer.minreq = std::uint32_t(-1);
    buffer.fragsize = std::uint32_t(-1);
    buffer.tlength = std::uint32_t(pa_usec_to_bytes(80'000, &spec));
    const Stream stream(pa_simple_new(nullptr, "Framora", PA_STREAM_PLAYBACK, nullptr, "Capture sound", &spec,
                                      nullptr, &buffer, nullptr));
    if (!stream)
        return;
    const sf_count_t framesAtOnce = std::max(1, format.samplerate / 50);
    std::vector<float> samples(std::size_t(framesAtOnce * format.channels));
    sf_seek(file, 0, SEEK_SET);
    while (!playback.stopped) {
        const sf_count_t frames = sf_readf_float(file, samples.data(), framesAtOnce);
        if (frames <= 0)
            break;
        const auto count = std::size_t(frames * format.channels);
        const float volume = playback.volume;
        std::for_each_n(samples.begin(), count, [&](float& sample) { sample *= volume; });
        if (pa_simple_write(stream.get(), samples.data(), count * sizeof(float), nullptr) < 0)
            return;
    }
    if (playback.stopped)
        pa_simple_flush(stream.get(), nullptr);
    else
        pa_simple_drain(stream.get(), nullptr);
}

} // namespace

/// The thread that plays; a new sound takes the place of the one that plays.
class PulseSoundOutput::Worker {
public:
    ~Worker() {
        if (!m_thread.joinable())
            return;
        std::unique_lock lock(m_state->mutex);
        m_state->ending = true;
        for (const auto& playback : {m_state->current, m_state->next})
            if (playback)
                playback->stopped = true;
        m_state->changed.notify_all();
        const bool ended = m_state->changed.wait_for(lock, endPatience, [this] { return m_state->ended; });
        lock.unlock();
        // A sound server that hangs must not keep the program from ending.
        if (ended)
            m_thread.join();
        else
            m_thread.detach();
    }

    void start(std::shared_ptr<Playback> playback) {
        {
            const std::lock_guard lock(m_state->mutex);
            if (m_state->current)
                m_state->current->stopped = true;
            m_state->next = std::move(playback);
        }
        m_state->changed.notify_all();
        if (!m_thread.joinable())
            m_thread = std::thread([state = m_state] { loop(*state); });
    }

private:
    static constexpr std::chrono::seconds endPatience{1};

    /// What the thread holds, too, so that it may outlast its owner.
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        std::shared_ptr<Playback> current;
        std::shared_ptr<Playback> next;
        bool ending = false;
        bool ended = false;
    };

    static void loop(State& state) {
        std::unique_lock lock(state.mutex);
        for (;;) {
            state.changed.wait(lock, [&] { return state.ending || state.next; });
            if (state.ending)
                break;
            state.current = std::exchange(state.next, nullptr);
            lock.unlock();
            run(*state.current);
            lock.lock();
            state.current.reset();
        }
        state.ended = true;
        state.changed.notify_all();
    }

    std::shared_ptr<State> m_state = std::make_shared<State>();
    std::thread m_thread;
};

class PulseSoundOutput::Player final : public AudioPlayer {
public:
    Player(std::shared_ptr<Worker> worker, std::shared_ptr<Playback> playback)
        : m_worker(std::move(worker)), m_playback(std::move(playback)) {}
    ~Player() override { m_playback->stopped = true; }
    void setVolume(float volume) override { m_playback->volume = std::clamp(volume, 0.0f, 1.0f); }
    void play() override { m_worker->start(m_playback); }

private:
    std::shared_ptr<Worker> m_worker;
    std::shared_ptr<Playback> m_playback;
};

PulseSoundOutput::PulseSoundOutput(ThemeSource theme)
    : m_theme(std::move(theme)), m_worker(std::make_shared<Worker>()) {}

PulseSoundOutput::~PulseSoundOutput() = default;

bool PulseSoundOutput::fileExists(const QString& path) const {
    return QFile::exists(path);
}

std::unique_ptr<AudioPlayer> PulseSoundOutput::playerForFile(const QUrl& url) {
    // A pipe or a device would keep its reader waiting.
    const QFileInfo file(url.toLocalFile());
    if (!file.isFile())
        return nullptr;
    auto playback = std::make_shared<Playback>();
    playback->opened = openFile(file.filePath());
    if (!playback->opened.file)
        return nullptr;
    return std::make_unique<Player>(m_worker, std::move(playback));
}

std::unique_ptr<AudioPlayer> PulseSoundOutput::systemSound(const QString& name) {
    const QString wanted = themeName(name);
    if (wanted.isEmpty())
        return nullptr;
    auto playback = std::make_shared<Playback>();
    playback->opening = openLater([theme = m_theme, wanted] { return theme().find(wanted); });
    return std::make_unique<Player>(m_worker, std::move(playback));
}

} // namespace framora
