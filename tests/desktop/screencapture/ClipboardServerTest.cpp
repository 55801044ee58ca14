#include "screencapture/ClipboardServer.h"
#include "desktop/support/VirtualDesktop.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <poll.h>
#include <thread>
#include <xcb/xcb.h>

namespace framora {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A client that asks for selections one protocol step at a time.
class ClipboardClient {
public:
    explicit ClipboardClient(const QString& display)
        : m_connection(xcb_connect(display.toUtf8().constData(), nullptr)) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_window = xcb_generate_id(m_connection);
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(m_connection, 0, m_window, screen->root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          0, XCB_CW_EVENT_MASK, &events);
    }
    ~ClipboardClient() { xcb_disconnect(m_connection); }

    xcb_atom_t atom(const char* name) {
        auto* reply = xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(strlen(name)), name),
            nullptr);
        const xcb_atom_t result = reply->atom;
        std::free(reply);
        return result;
    }
    void ask(const char* target, const char* property, xcb_timestamp_t time = XCB_CURRENT_TIME) {
        xcb_convert_selection(m_connection, m_window, atom("CLIPBOARD"), atom(target),
                              property ? atom(property) : 0, time);
        xcb_flush(m_connection);
    }
    void set(const char* property, const char* type, const std::vector<std::uint32_t>& values) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(property), atom(type), 32,
                            static_cast<std::uint32_t>(values.size()), values.data());
    }
    void own() {
        xcb_set_selection_owner(m_connection, m_window, atom("CLIPBOARD"), XCB_CURRENT_TIME);
        // Answered when it has happened; a connection that closes at once may lose it.
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    /// The property a SelectionNotify names; nothing when none comes within five seconds.
    std::optional<xcb_atom_t> answer() {
        const auto* notify = waitFor([](const xcb_generic_event_t& event) {
            return (event.response_type & 0x7f) == XCB_SELECTION_NOTIFY;
        });
        return notify ? std::optional(reinterpret_cast<const xcb_selection_notify_event_t*>(notify)->property)
                      : std::nullopt;
    }
    bool waitForNew(const char* property) {
        const xcb_atom_t wanted = atom(property);
        return waitFor([wanted](const xcb_generic_event_t& event) {
            const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            return (event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && notify.atom == wanted &&
                   notify.state == XCB_PROPERTY_NEW_VALUE;
        });
    }
    /// Reads and removes a property.
    Bytes take(const char* property, std::string* type = nullptr) {
        auto* reply = xcb_get_property_reply(m_connection,
                                             xcb_get_property(m_connection, 1, m_window, atom(property),
                                                              XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 24),
                                             nullptr);
        const auto* data = static_cast<const std::uint8_t*>(xcb_get_property_value(reply));
        Bytes bytes(data, data + xcb_get_property_value_length(reply));
        if (type)
            *type = reply->type ? nameOf(reply->type) : std::string();
        std::free(reply);
        return bytes;
    }
    std::vector<std::uint32_t> takeWords(const char* property) {
        const Bytes bytes = take(property);
        std::vector<std::uint32_t> words(bytes.size() / 4);
        if (!words.empty())
            memcpy(words.data(), bytes.data(), words.size() * 4);
        return words;
    }
    /// One further part of an incremental transfer; empty for the last one, or when none comes in time.
    Bytes nextPart(const char* property) {
        std::string type;
        while (waitForNew(property)) {
            Bytes part = take(property, &type);
            if (!type.empty()) // else the notice was of what has been taken already
                return part;
        }
        return {};
    }
    /// The rest of an incremental transfer whose INCR property was taken.
    Bytes rest(const char* property) {
        Bytes all;
        for (Bytes part = nextPart(property); !part.empty(); part = nextPart(property))
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }
    std::string nameOf(xcb_atom_t a) {
        auto* reply = xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, a), nullptr);
        std::string name(xcb_get_atom_name_name(reply),
                         static_cast<std::size_t>(xcb_get_atom_name_name_length(reply)));
        std::free(reply);
        return name;
    }

private:
    template <typename Condition> const xcb_generic_event_t* waitFor(Condition wanted) {
        for (std::size_t i = 0; i < m_kept.size(); ++i)
            if (wanted(*m_kept[i]))
                return handOver(i);
        for (;;) {
            while (auto* event = xcb_poll_for_event(m_connection)) {
                m_kept.emplace_back(event, &std::free);
                if (wanted(*event))
                    return handOver(m_kept.size() - 1);
            }
            pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
            if (poll(&waiting, 1, 5000) <= 0)
                return nullptr;
        }
    }
    using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;
    const xcb_generic_event_t* handOver(std::size_t i) {
        m_last = std::move(m_kept[i]);
        m_kept.erase(m_kept.begin() + static_cast<std::ptrdiff_t>(i));
        return m_last.get();
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_window = 0;
    std::vector<Event> m_kept;
    Event m_last{nullptr, &std::free};
};

class ClipboardServerTest : public testing::Test {
protected:
    ClipboardServerTest() : desktop(options()) {}
    ~ClipboardServerTest() override {
        if (thread.joinable()) {
            ClipboardClient(desktop.displayName()).own();
            thread.join();
        }
        xcb_disconnect(connection);
    }
    static DesktopOptions options() {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        options.sessionBus = false;
        return options;
    }
    void serve(Bytes bytes, std::chrono::milliseconds patience = std::chrono::seconds(10)) {
        connection = xcb_connect(desktop.displayName().toUtf8().constData(), nullptr);
        server = std::make_unique<ClipboardServer>(connection, std::move(bytes), patience);
        ASSERT_TRUE(server->own());
        thread = std::thread([this] {
            server->run();
            ended = true;
        });
    }
    static Bytes numbered(std::size_t size) {
        Bytes bytes(size);
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<std::uint8_t>(i * 31 + i / 251);
        return bytes;
    }

    VirtualDesktop desktop;
    xcb_connection_t* connection = nullptr;
    std::unique_ptr<ClipboardServer> server;
    std::thread thread;
    std::atomic<bool> ended = false;
};

TEST_F(ClipboardServerTest, answersEveryTarget) {
    const Bytes small = numbered(1000);
    serve(small);
    ClipboardClient client(desktop.displayName());
    std::string type;
    client.ask("image/png", "P");
    EXPECT_EQ(client.answer(), client.atom("P"));
    EXPECT_EQ(client.take("P", &type), small);
    EXPECT_EQ(type, "image/png");
    client.ask("TIMESTAMP", "P");
    EXPECT_EQ(client.answer(), client.atom("P"));
    const auto time = client.takeWords("P");
    ASSERT_EQ(time.size(), 1U);
    EXPECT_NE(time[0], 0U);
    client.ask("TARGETS", "P");
    EXPECT_EQ(client.answer(), client.atom("P"));
    std::set<std::string> names;
    for (const std::uint32_t target : client.takeWords("P"))
        names.insert(client.nameOf(target));
    EXPECT_EQ(names,
              (std::set<std::string>{"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "image/png"}));
    client.ask("SAVE_TARGETS", "P");
    EXPECT_EQ(client.answer(), client.atom("P"));
    EXPECT_TRUE(client.take("P", &type).empty());
    EXPECT_EQ(type, "NULL");
}

TEST_F(ClipboardServerTest, refusesWhatItDoesNotHaveAndWhatWasAskedBeforeItsTime) {
    serve(numbered(1000));
    ClipboardClient client(desktop.displayName());
    client.ask("text/plain", "P");
    EXPECT_EQ(client.answer(), xcb_atom_t{XCB_ATOM_NONE});
    client.ask("MULTIPLE", "P"); // without a list of pairs
    EXPECT_EQ(client.answer(), xcb_atom_t{XCB_ATOM_NONE});
    client.ask("TIMESTAMP", "P");
    client.answer();
    const auto since = client.takeWords("P");
    ASSERT_EQ(since.size(), 1U);
    client.ask("image/png", "P", since[0]);
    EXPECT_EQ(client.answer(), client.atom("P"));
    client.ask("image/png", "P", since[0] - 1);
    EXPECT_EQ(client.answer(), xcb_atom_t{XCB_ATOM_NONE});
}

TEST_F(ClipboardServerTest, anOldClientWithoutAPropertyGetsTheTargetsName) {
    const Bytes small = numbered(500);
    serve(small);
    ClipboardClient client(desktop.displayName());
    client.ask("image/png", nullptr);
    EXPECT_EQ(client.answer(), client.atom("image/png"));
    EXPECT_EQ(client.take("image/png"), small);
}

TEST_F(ClipboardServerTest, multipleAnswersEachPairAndMarksWhatItCannot) {
    const Bytes small = numbered(500);
    serve(small);
    ClipboardClient client(desktop.displayName());
    client.set("PAIRS", "ATOM_PAIR",
               {client.atom("image/png"), client.atom("A"), client.atom("text/html"), client.atom("B"),
                client.atom("TARGETS"), client.atom("C")});
    client.ask("MULTIPLE", "PAIRS");
    EXPECT_EQ(client.answer(), client.atom("PAIRS"));
    EXPECT_EQ(client.take("A"), small);
    EXPECT_TRUE(client.take("B").empty());
    EXPECT_EQ(client.takeWords("C").size(), 5U);
    const auto pairs = client.takeWords("PAIRS");
    ASSERT_EQ(pairs.size(), 6U);
    EXPECT_EQ(pairs[1], client.atom("A"));
    EXPECT_EQ(pairs[3], xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_EQ(pairs[5], client.atom("C"));
}

TEST_F(ClipboardServerTest, largePicturesGoInPartsToSeveralClientsAtOnce) {
    const Bytes large = numbered(3'000'000);
    serve(large);
    ClipboardClient first(desktop.displayName());
    ClipboardClient second(desktop.displayName());
    std::string type;
    first.ask("image/png", "P");
    second.ask("image/png", "P");
    first.ask("image/png", "Q"); // and a second time into another property
    EXPECT_EQ(first.answer(), first.atom("P"));
    EXPECT_EQ(first.answer(), first.atom("Q"));
    EXPECT_EQ(second.answer(), second.atom("P"));
    const auto announced = first.takeWords("P");
    ASSERT_EQ(announced.size(), 1U);
    EXPECT_EQ(announced[0], large.size());
    second.take("P", &type);
    EXPECT_EQ(type, "INCR");
    first.take("Q");
    Bytes a = first.nextPart("P");
    Bytes b = second.nextPart("P");
    const Bytes restB = second.rest("P");
    const Bytes c = first.rest("Q");
    const Bytes restA = first.rest("P");
    a.insert(a.end(), restA.begin(), restA.end());
    b.insert(b.end(), restB.begin(), restB.end());
    EXPECT_TRUE(a == large);
    EXPECT_TRUE(b == large);
    EXPECT_TRUE(c == large);
}

TEST_F(ClipboardServerTest, finishesWhatIsUnderWayWhenAnotherOwnerTakesOver) {
    const Bytes large = numbered(2'000'000);
    serve(large);
    ClipboardClient client(desktop.displayName());
    ClipboardClient other(desktop.displayName());
    client.ask("image/png", "P");
    ASSERT_EQ(client.answer(), client.atom("P"));
    client.take("P");
    Bytes all = client.nextPart("P");
    other.own();
    EXPECT_FALSE(ended);
    const Bytes rest = client.rest("P");
    all.insert(all.end(), rest.begin(), rest.end());
    EXPECT_TRUE(all == large);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return ended.load(); }));
}

TEST_F(ClipboardServerTest, aClientThatDiesMidwayIsForgottenAndOthersAreServed) {
    const Bytes large = numbered(2'000'000);
    serve(large);
    {
        ClipboardClient dying(desktop.displayName());
        dying.ask("image/png", "P");
        ASSERT_EQ(dying.answer(), dying.atom("P"));
        dying.take("P");
        ASSERT_FALSE(dying.nextPart("P").empty());
    }
    ClipboardClient client(desktop.displayName());
    client.ask("image/png", "P");
    ASSERT_EQ(client.answer(), client.atom("P"));
    client.take("P");
    EXPECT_TRUE(client.rest("P") == large);
    client.own();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return ended.load(); }, 4000))
        << "the dead one is not waited for";
}

TEST_F(ClipboardServerTest, aClientThatTakesNothingIsGivenUp) {
    serve(numbered(2'000'000), std::chrono::milliseconds(200));
    ClipboardClient stuck(desktop.displayName());
    stuck.ask("image/png", "P");
    ASSERT_EQ(stuck.answer(), stuck.atom("P"));
    ClipboardClient(desktop.displayName()).own();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return ended.load(); }, 5000));
}

} // namespace
} // namespace framora
