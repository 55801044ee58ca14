#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <stop_token>
#include <vector>

namespace framora {

/// A file that may become a wallpaper on offer.
struct WallpaperCandidate {
    QUrl url;
    QString name; ///< "Current Wallpaper", or the file's own.
    qint64 size;  ///< Bytes.
    bool isVideo;

    friend bool operator==(const WallpaperCandidate&, const WallpaperCandidate&) = default;
};

/// Where wallpapers are kept.
struct WallpaperFolders {
    QStringList folders; ///< In the order in which they are offered.
    /// In paths that contain this one smaller files count too.
    QString referenceFolder;

    /// The platforms' folders, the user's own in this home folder.
    static WallpaperFolders inHome(const QString& home);
};

/// Finds the files: the desktop's current pictures first, then each folder's, by path. One pass, any thread.
class WallpaperScan {
public:
    /// All folders together offer no more than these, so that what the program keeps of them is bounded; the
    /// current pictures come beside. A folder of photographs takes no room from the others: where not all
    /// files fit, each folder gets as many as every other, or all of its own.
    static constexpr std::size_t mostInAll = 400;
    /// Of one folder no more entries are looked at.
    static constexpr int mostEntries = 100'000;

    /// `currentPictures` in screen order; a file that does not exist is left out.
    static std::vector<WallpaperCandidate> candidates(const std::vector<QUrl>& currentPictures,
                                                      const WallpaperFolders& folders,
                                                      const std::stop_token& stop = {});
};

} // namespace framora
