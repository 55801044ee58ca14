#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace framora {

/// Named notifications without sender or payload, posted and observed on the main thread.
///
/// Observers are called synchronously inside post(), in the order in which they subscribed. An observer may
/// subscribe, unsubscribe or post while it is being called: one removed meanwhile is not called any more, one
/// added meanwhile is called from the next post on.
class NotificationCenter {
public:
    using Handler = std::function<void()>;

    /// A subscription; destroying it ends it. It may outlive the centre.
    class Token {
    public:
        Token() = default;

    private:
        friend class NotificationCenter;
        explicit Token(std::shared_ptr<void> held) : m_held(std::move(held)) {}
        std::shared_ptr<void> m_held;
    };

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    [[nodiscard]] Token observe(std::string_view name, Handler handler);
    void post(std::string_view name);

private:
    struct Observer;
    std::vector<std::weak_ptr<Observer>> m_observers;
};

} // namespace framora
