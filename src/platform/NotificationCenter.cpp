#include "platform/NotificationCenter.h"

#include <algorithm>

namespace framora {

struct NotificationCenter::Observer {
    std::string name;
    Handler handler;
};

NotificationCenter::NotificationCenter() = default;
NotificationCenter::~NotificationCenter() = default;

NotificationCenter::Token NotificationCenter::observe(std::string_view name, Handler handler) {
    std::erase_if(m_observers, [](const auto& weak) { return weak.expired(); });
    auto observer = std::make_shared<Observer>(Observer{std::string(name), std::move(handler)});
    m_observers.push_back(observer);
    return Token(std::move(observer));
}

void NotificationCenter::post(std::string_view name) {
    const auto snapshot = m_observers;
    for (const auto& weak : snapshot) {
        const auto observer = weak.lock();
        if (observer && observer->name == name)
            observer->handler();
    }
}

} // namespace framora
