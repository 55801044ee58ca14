#pragma once

#include "platform/UserDefaults.h"

#include <QString>

namespace framora {

/// The user's store as one file: a JSON object with a member for each key. Other members are kept as they
/// are. A file that is no JSON object reads as empty, and stays as it is until something is stored.
class JsonFileDefaults final : public UserDefaults {
public:
    explicit JsonFileDefaults(QString path) : m_path(std::move(path)) {}
    /// defaults.json in the program's folder of the user's configuration.
    static QString defaultPath();

    std::optional<std::string> dataForKey(const std::string& key) const override;
    /// Replaces the file at once: whenever the process dies, the old or the new file stands there, whole.
    bool setData(const std::string& key, const std::string& json) override;

private:
    QString m_path;
};

} // namespace framora
