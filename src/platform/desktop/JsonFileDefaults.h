#pragma once

#include "platform/UserDefaults.h"

#include <QElapsedTimer>
#include <QString>
#include <QTimer>

namespace framora {

/// The user's store as one file: a JSON object with a member for each key. Other members are kept as they
/// are. A file that is no JSON object reads as empty, and stays as it is until something is stored.
class JsonFileDefaults final : public UserDefaults {
public:
    /// What is stored in quick succession is synced this long after the last of it, in milliseconds.
    static constexpr int calm = 200;

    explicit JsonFileDefaults(QString path);
    ~JsonFileDefaults() override;
    /// defaults.json in the program's folder of the user's configuration.
    static QString defaultPath();

    std::optional<std::string> dataForKey(const std::string& key) const override;
    /// Replaces the file at once: whenever the process dies, the old or the new file stands there, whole. It
    /// is synced to the disk before that, but for what follows another save closely, as the steps of a slider
    /// do: that is synced when it is calm again, and at the latest in the destructor.
    bool setData(const std::string& key, const std::string& json) override;
    /// Whether what was stored last waits to be synced.
    bool isSyncPending() const { return m_syncing.isActive(); }

private:
    void sync();

    QString m_path;
    QElapsedTimer m_sinceSave;
    QTimer m_syncing;
};

} // namespace framora
