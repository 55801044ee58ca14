// sound_bench [RUNS]: how long play() holds its caller, and when the sound begins at the sink's monitor.
// Needs a sound server ($PULSE_SERVER) whose default sink is quiet, and the sound module beside the program.
// The theme's own file is silent at first (60.6 ms in sound-theme-freedesktop); that is part of the second
// figure.
#include "feedback/SoundManager.h"
#include "platform/desktop/LazySoundOutput.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <pulse/simple.h>
#include <vector>

using namespace framora;
using Clock = std::chrono::steady_clock;

namespace {

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

void print(const char* what, std::vector<double> values) {
    std::ranges::sort(values);
    std::printf("%-34s median %7.3f ms   most %7.3f ms\n", what, values[values.size() / 2], values.back());
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int runs = argc > 1 ? std::atoi(argv[1]) : 15;
    LazySoundOutput output;
    SoundManager manager(output);
    output.prepare();
    QThread::msleep(300);

    const pa_sample_spec spec{PA_SAMPLE_FLOAT32NE, 48000, 1};
    pa_buffer_attr buffer{std::uint32_t(-1), std::uint32_t(-1), std::uint32_t(-1), std::uint32_t(-1),
                          std::uint32_t(pa_usec_to_bytes(2'000, &spec))};
    pa_simple* monitor = pa_simple_new(nullptr, "sound_bench", PA_STREAM_RECORD, "@DEFAULT_MONITOR@",
                                       "monitor", &spec, nullptr, &buffer, nullptr);
    std::vector<double> calls;
    std::vector<double> starts;
    std::array<float, 96> samples{}; // 2 ms
    for (int run = 0; run < runs; ++run) {
        // Silence first, read away.
        for (int quiet = 0; monitor && quiet < 150;) {
            pa_simple_read(monitor, samples.data(), sizeof samples, nullptr);
            quiet = std::ranges::all_of(samples, [](float s) { return s == 0; }) ? quiet + 1 : 0;
        }
        const auto begin = Clock::now();
        manager.play(CaptureSound::frog, 1.0f);
        calls.push_back(milliseconds(Clock::now() - begin));
        while (monitor && Clock::now() - begin < std::chrono::seconds(2)) {
            pa_simple_read(monitor, samples.data(), sizeof samples, nullptr);
            if (std::ranges::any_of(samples, [](float s) { return std::abs(s) > 1e-4f; })) {
                starts.push_back(milliseconds(Clock::now() - begin));
                break;
            }
        }
        if (!monitor)
            QThread::msleep(100);
    }
    print("play() returns", calls);
    if (!starts.empty())
        print("first sample seen at the monitor", starts);
    if (monitor)
        pa_simple_free(monitor);
}
