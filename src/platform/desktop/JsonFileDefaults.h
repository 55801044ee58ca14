#pragma once

#include "platform/UserDefaults.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <map>

namespace framora {

/// The user's store as one file: a JSON object with a member for each key. Other members are kept as they
/// are. A file that is no JSON object reads as empty, and stays as it is until something is stored.
///
/// Whenever the process or the machine dies, the old or the new file stands there, whole: it is always
/// written beside, synced and moved over. In a drag, which is as many saves as it has steps, that is done for
/// several steps at once. An object is used by the thread that made it.
class JsonFileDefaults final : public UserDefaults {
public:
    static constexpr std::chrono::milliseconds usualCalm{200};

    /// What follows another save within `calm` is a step.
    explicit JsonFileDefaults(QString path, std::chrono::milliseconds calm = usualCalm);
    ~JsonFileDefaults() override;
    /// defaults.json in the program's folder of the user's configuration.
    static QString defaultPath();

    std::optional<std::string> dataForKey(const std::string& key) const override;
    /// Replaces the file at once. A step is kept here while an event loop runs, where this object's readers
    /// see it, and is in the file `calm` after the first one that is not, or at the end of the program or of
    /// this object. Where the file cannot be replaced then, that is tried again.
    bool setData(const std::string& key, const std::string& json) override;
    bool isEmpty() const override;
    /// Whether something is kept that is not in the file yet.
    bool isSavePending() const { return !m_pending.empty(); }

private:
    /// The values as JSON texts.
    using Values = std::map<std::string, std::string>;

    bool store(const Values& values) const;
    void storePending();

    QString m_path;
    std::chrono::milliseconds m_calm;
    Values m_pending;
    QElapsedTimer m_sinceSave;
    QTimer m_saving;
    QMetaObject::Connection m_atQuit;
};

} // namespace framora
