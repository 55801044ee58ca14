#include "platform/x11/X11Connector.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace framora {

/// What the waiting thread and the connecting one share; whoever comes last clears up.
struct X11Connector::Attempt {
    ~Attempt() {
        if (link)
            xcb_disconnect(link->connection);
    }

    std::mutex mutex;
    std::condition_variable ended;
    std::optional<X11Connection::Link> link;
};

X11Connector::X11Connector() = default;
X11Connector::~X11Connector() = default;

std::unique_ptr<X11Connection> X11Connector::connect(std::chrono::milliseconds patience) {
    if (!m_attempt) {
        m_attempt = std::make_shared<Attempt>();
        // The library waits for the server's answer for as long as it takes, and nothing can end that.
        std::thread([attempt = m_attempt] {
            const auto link = X11Connection::open();
            const std::scoped_lock lock(attempt->mutex);
            attempt->link = link;
            attempt->ended.notify_one();
        }).detach();
    }
    std::optional<X11Connection::Link> link;
    {
        std::unique_lock lock(m_attempt->mutex);
        if (!m_attempt->ended.wait_for(lock, patience, [this] { return m_attempt->link.has_value(); }))
            return nullptr;
        link = std::exchange(m_attempt->link, std::nullopt);
    }
    m_attempt.reset();
    auto connection = std::make_unique<X11Connection>(*link);
    return connection->isValid() ? std::move(connection) : nullptr;
}

} // namespace framora
