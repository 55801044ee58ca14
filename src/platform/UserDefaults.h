#pragma once

#include <optional>
#include <string>

namespace framora {

/// The user's key/value store. Values are JSON texts, so that a reader can refuse one without hurting the
/// others.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;
    /// The value kept under `key` as JSON text; nothing when there is none or the store cannot be read.
    virtual std::optional<std::string> dataForKey(const std::string& key) const = 0;
    /// Keeps `json` under `key` and leaves every other key alone. False when nothing could be written; the
    /// store then holds what it held before.
    virtual bool setData(const std::string& key, const std::string& json) = 0;
    /// Whether nothing has ever been kept. A store that is damaged or cannot be read is not empty.
    virtual bool isEmpty() const = 0;
};

} // namespace framora
