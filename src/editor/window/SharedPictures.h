#pragma once

#include <QByteArray>
#include <QString>
#include <deque>
#include <memory>
#include <optional>

class QTemporaryDir;

namespace framora {

class MainQueue;
class WorkItem;

/// The files of pictures that other programs were given. Each lies in a folder that only its user may enter
/// and goes after an hour, when too many have followed it, or with the program. Where the program only makes
/// room for another process of it, they stay, and go with the user's runtime folder.
class SharedPictures {
public:
    static constexpr double keptSeconds = 3600.0;
    static constexpr std::size_t keptPictures = 8;
    /// The application's property that is true when they stay.
    static constexpr char outliveProgram[] = "sharedPicturesOutliveProgram";

    /// `folder` is where the folders are made; the user's runtime folder when empty.
    explicit SharedPictures(MainQueue& mainQueue, QString folder = {});
    ~SharedPictures();

    /// Writes "Screenshot.png" and returns its path; nothing when that fails or there are no bytes.
    std::optional<QString> add(const QByteArray& png);
    /// At once: nobody was given it after all. Nothing when it has gone already.
    void remove(const QString& path);

private:
    struct Entry {
        std::unique_ptr<QTemporaryDir> folder;
        std::unique_ptr<WorkItem> end;
    };

    MainQueue& m_mainQueue;
    QString m_folder;
    std::deque<Entry> m_entries; ///< The oldest first.
};

} // namespace framora
