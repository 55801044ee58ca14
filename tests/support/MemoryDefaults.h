#pragma once

#include "platform/UserDefaults.h"

#include <map>

namespace framora {

/// A store in memory.
class MemoryDefaults final : public UserDefaults {
public:
    std::optional<std::string> dataForKey(const std::string& key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    bool setData(const std::string& key, const std::string& json) override {
        if (isReadOnly)
            return false;
        values[key] = json;
        return true;
    }

    bool isEmpty() const override { return values.empty() && !isDamaged; }

    std::map<std::string, std::string> values;
    bool isReadOnly = false;
    bool isDamaged = false; ///< There is something, which no key leads to.
};

} // namespace framora
