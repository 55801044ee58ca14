#include "PointerLatency.h"

#include <QEventLoop>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <thread>
#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

double since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A connection of its own, to be used beside Qt's.
class Pointer {
public:
    explicit Pointer(WId window) : m_connection(xcb_connect(nullptr, nullptr)) {
        const auto* damage = xcb_get_extension_data(m_connection, &xcb_damage_id);
        const auto* test = xcb_get_extension_data(m_connection, &xcb_test_id);
        m_isUsable = damage && damage->present && test && test->present;
        if (!m_isUsable)
            return;
        m_damageEvent = damage->first_event + XCB_DAMAGE_NOTIFY;
        std::free(xcb_damage_query_version_reply(m_connection, xcb_damage_query_version(m_connection, 1, 1),
                                                 nullptr));
        xcb_damage_create(m_connection, xcb_generate_id(m_connection), xcb_drawable_t(window),
                          XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        xcb_flush(m_connection);
    }
    ~Pointer() { xcb_disconnect(m_connection); }
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;

    bool isUsable() const { return m_isUsable; }
    void moveTo(QPoint place) { send(XCB_MOTION_NOTIFY, 0, place); }
    void button(bool isDown) { send(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1, {}); }
    /// Whether pixels of the window were written within the time.
    bool waitForPixels(milliseconds time) {
        for (const auto start = Clock::now();;) {
            while (auto event = std::unique_ptr<xcb_generic_event_t, void (*)(void*)>(
                       xcb_poll_for_event(m_connection), std::free))
                if ((event->response_type & 0x7f) == m_damageEvent)
                    return true;
            const auto left = time - std::chrono::duration_cast<milliseconds>(Clock::now() - start);
            pollfd ready{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            if (left.count() <= 0 || xcb_connection_has_error(m_connection) ||
                poll(&ready, 1, int(left.count())) < 0)
                return false;
        }
    }
    void waitForQuiet() {
        while (waitForPixels(milliseconds(20)))
            continue;
    }

private:
    void send(std::uint8_t type, std::uint8_t detail, QPoint place) {
        xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, XCB_NONE, std::int16_t(place.x()),
                            std::int16_t(place.y()), 0);
        xcb_flush(m_connection);
    }

    xcb_connection_t* m_connection;
    bool m_isUsable = false;
    int m_damageEvent = 0;
};

PointerLatency drag(WId window, QPoint middle, int count) {
    PointerLatency latency;
    Pointer pointer(window);
    if (!pointer.isUsable())
        return latency;
    pointer.moveTo(middle);
    pointer.waitForQuiet();
    pointer.button(true);
    pointer.waitForQuiet();
    for (int i = 1; i <= count; ++i) {
        const QPoint away(int(150 * std::sin(i / 40.0)) + i % 2, int(90 * std::sin(i / 27.0)));
        // Whatever comes at fixed times meets all of them.
        std::this_thread::sleep_for(std::chrono::microseconds(i * 377 % 5000));
        const auto start = Clock::now();
        pointer.moveTo(middle + away);
        if (!pointer.waitForPixels(milliseconds(200)))
            continue;
        double last = since(start);
        latency.toFirstPixels.push_back(last);
        while (pointer.waitForPixels(milliseconds(20)))
            last = since(start);
        latency.toLastPixels.push_back(last);
    }
    pointer.button(false);
    pointer.waitForQuiet();
    return latency;
}

} // namespace

PointerLatency PointerLatency::measure(WId window, QPoint middle, int count) {
    PointerLatency latency;
    QEventLoop loop;
    std::jthread thread([&] {
        latency = drag(window, middle, count);
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    return latency;
}
