// How long a person waits for the capture tool: from its start to the overlay on the screen, and from letting
// go of the button to the picture on the clipboard. Starts an X server of its own; prints medians, judges
// nothing.
//
//     capture_bench TOOL [RUNS]

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "capture_bench: %s\n", why);
    std::exit(1);
}

/// A virtual X server, ended with this object.
class Server {
public:
    explicit Server(const std::string& size) {
        int ends[2];
        if (pipe(ends) != 0)
            giveUp("no pipe");
        m_process = fork();
        if (m_process == 0) {
            close(ends[0]);
            const int nothing = open("/dev/null", O_RDWR);
            dup2(nothing, 2);
            execlp("Xvfb", "Xvfb", "-displayfd", std::to_string(ends[1]).c_str(), "-screen", "0",
                   (size + "x24").c_str(), "-nolisten", "tcp", nullptr);
            _exit(127);
        }
        close(ends[1]);
        std::string number;
        for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
            number += c;
        close(ends[0]);
        if (number.empty())
            giveUp("Xvfb does not start");
        m_display = ":" + number;
        setenv("DISPLAY", m_display.c_str(), 1);
    }
    ~Server() {
        kill(m_process, SIGTERM);
        waitpid(m_process, nullptr, 0);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

private:
    pid_t m_process = -1;
    std::string m_display;
};

/// A client that looks at the screen and moves the pointer.
class Person {
public:
    Person() : m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection))
            giveUp("no display");
        m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        auto* atom =
            xcb_intern_atom_reply(m_connection, xcb_intern_atom(m_connection, 0, 9, "CLIPBOARD"), nullptr);
        m_clipboard = atom->atom;
        std::free(atom);
        std::free(xcb_xfixes_query_version_reply(m_connection, xcb_xfixes_query_version(m_connection, 5, 0),
                                                 nullptr));
        xcb_xfixes_select_selection_input(m_connection, m_screen->root, m_clipboard,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
        m_ownerEvent = xcb_get_extension_data(m_connection, &xcb_xfixes_id)->first_event;
    }
    ~Person() { xcb_disconnect(m_connection); }
    Person(const Person&) = delete;
    Person& operator=(const Person&) = delete;

    int width() const { return m_screen->width_in_pixels; }
    int height() const { return m_screen->height_in_pixels; }

    /// Something like a desktop to take pictures of: a soft gradient and windows with lines of "text".
    void furnish(int windows) {
        std::vector<std::uint32_t> row(static_cast<std::size_t>(width()));
        const xcb_pixmap_t paper = xcb_generate_id(m_connection);
        const xcb_gcontext_t gc = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, m_screen->root_depth, paper, m_screen->root,
                          static_cast<std::uint16_t>(width()), static_cast<std::uint16_t>(height()));
        xcb_create_gc(m_connection, gc, paper, 0, nullptr);
        for (int y = 0; y < height(); ++y) {
            for (int x = 0; x < width(); ++x)
                row[static_cast<std::size_t>(x)] = static_cast<std::uint32_t>(
                    (90 + x * 100 / width()) << 16 | (110 + y * 90 / height()) << 8 | 200);
            xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, paper, gc,
                          static_cast<std::uint16_t>(width()), 1, 0, static_cast<std::int16_t>(y), 0,
                          m_screen->root_depth, static_cast<std::uint32_t>(row.size() * 4),
                          reinterpret_cast<std::uint8_t*>(row.data()));
        }
        xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_BACK_PIXMAP, &paper);
        xcb_clear_area(m_connection, 0, m_screen->root, 0, 0, 0, 0);
        std::uint32_t noise = 1;
        for (int i = 0; i < windows; ++i) {
            const xcb_window_t window = xcb_generate_id(m_connection);
            const int w = width() / 2;
            const int h = height() / 2;
            const xcb_pixmap_t page = xcb_generate_id(m_connection);
            xcb_create_pixmap(m_connection, m_screen->root_depth, page, m_screen->root,
                              static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h));
            const std::uint32_t white = 0xf8f8f8;
            xcb_change_gc(m_connection, gc, XCB_GC_FOREGROUND, &white);
            const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h)};
            xcb_poly_fill_rectangle(m_connection, page, gc, 1, &all);
            const std::uint32_t ink = 0x303030;
            xcb_change_gc(m_connection, gc, XCB_GC_FOREGROUND, &ink);
            std::vector<xcb_rectangle_t> strokes;
            for (int y = 12; y < h - 20; y += 18)
                for (int x = 10; x < w - 20; x += 4 + static_cast<int>(noise >> 29)) {
                    noise = noise * 1664525U + 1013904223U;
                    strokes.push_back({static_cast<std::int16_t>(x),
                                       static_cast<std::int16_t>(y + (noise >> 27) % 6),
                                       static_cast<std::uint16_t>(1 + (noise >> 20) % 3),
                                       static_cast<std::uint16_t>(2 + (noise >> 12) % 9)});
                }
            xcb_poly_fill_rectangle(m_connection, page, gc, static_cast<std::uint32_t>(strokes.size()),
                                    strokes.data());
            const std::uint32_t values[] = {page};
            xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root,
                              static_cast<std::int16_t>(40 + i * 90), static_cast<std::int16_t>(40 + i * 50),
                              static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h), 0,
                              XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP,
                              values);
            xcb_map_window(m_connection, window);
        }
        sync();
    }
    std::uint32_t pixel(int x, int y) {
        auto* image = xcb_get_image_reply(m_connection,
                                          xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
                                                        m_screen->root, static_cast<std::int16_t>(x),
                                                        static_cast<std::int16_t>(y), 1, 1, ~0U),
                                          nullptr);
        std::uint32_t value = 0;
        std::memcpy(&value, xcb_get_image_data(image), 4);
        std::free(image);
        return value & 0xffffff;
    }
    void fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
        xcb_test_fake_input(m_connection, type, detail, 0, m_screen->root, static_cast<std::int16_t>(x),
                            static_cast<std::int16_t>(y), 0);
        sync();
    }
    void sync() {
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    void waitForOwner() {
        for (;;) {
            while (auto* event = xcb_poll_for_event(m_connection)) {
                const bool owner =
                    (event->response_type & 0x7f) == m_ownerEvent + XCB_XFIXES_SELECTION_NOTIFY;
                std::free(event);
                if (owner)
                    return;
            }
            pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            if (poll(&waiting, 1, 10000) <= 0)
                giveUp("the clipboard was not taken");
        }
    }
    void forgetEvents() {
        sync();
        while (auto* event = xcb_poll_for_event(m_connection))
            std::free(event);
    }

private:
    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen = nullptr;
    xcb_atom_t m_clipboard = 0;
    std::uint8_t m_ownerEvent = 0;
};

struct Waits {
    std::vector<double> overlay;
    std::vector<double> clipboard;
};

/// One capture: the whole screen dragged, or the window under the pointer clicked.
void captureOnce(Person& person, const char* tool, bool window, Waits& waits) {
    const int x = 3;
    const int y = person.height() - 3;
    const std::uint32_t before = person.pixel(x, y);
    person.fake(XCB_MOTION_NOTIFY, 0, window ? 300 : 0, window ? 300 : 0);
    person.forgetEvents();
    const auto start = Clock::now();
    const pid_t process = fork();
    if (process == 0) {
        execl(tool, tool, window ? "-w" : "-i", "-c", "-x", nullptr);
        _exit(127);
    }
    while (person.pixel(x, y) == before)
        if (millisecondsSince(start) > 10000)
            giveUp("no overlay came up");
    waits.overlay.push_back(millisecondsSince(start));
    std::this_thread::sleep_for(std::chrono::milliseconds(window ? 800 : 150)); // a person's first moment

    person.fake(XCB_BUTTON_PRESS, 1, 0, 0);
    if (!window)
        for (int i = 1; i <= 10; ++i)
            person.fake(XCB_MOTION_NOTIFY, 0, i * (person.width() - 1) / 10, i * (person.height() - 1) / 10);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const auto release = Clock::now();
    person.fake(XCB_BUTTON_RELEASE, 1, 0, 0);
    person.waitForOwner();
    waits.clipboard.push_back(millisecondsSince(release));
    int status = 0;
    waitpid(process, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        giveUp("the tool failed");
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        giveUp("usage: capture_bench TOOL [RUNS]");
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 15;
    for (const char* size : {"1280x800", "2560x1440", "3840x2160"}) {
        const Server server(size);
        Person person;
        person.furnish(12);
        for (const bool window : {false, true}) {
            Waits waits;
            for (int i = 0; i < runs; ++i)
                captureOnce(person, argv[1], window, waits);
            std::printf(
                "%-10s %-6s start -> overlay visible %6.1f ms   release -> clipboard owned %6.1f ms   "
                "(medians of %d)\n",
                size, window ? "window" : "area", median(waits.overlay), median(waits.clipboard), runs);
            std::fflush(stdout);
        }
    }
}
