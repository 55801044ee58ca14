#include "editor/render/WallpaperScan.h"

#include "editor/render/BackgroundDecoder.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>

namespace framora {
namespace {

constexpr qint64 smallestInReference = 50'000;
constexpr qint64 smallestElsewhere = 100'000;
constexpr int deepestFolder = 40;

bool isExcluded(const QString& path) {
    constexpr std::array fragments{"/.thumbnails/", "Thumbnail", "/Solid Colors/", "@2x",
                                   "Portrait",      ".DS_Store", "Photo Booth",    "Screenshots"};
    return std::any_of(fragments.begin(), fragments.end(),
                       [&](const char* fragment) { return path.contains(QLatin1String(fragment)); });
}

bool isImage(const QString& path) {
    static const QSet<QString> extensions{
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"), QStringLiteral("heic"),
        QStringLiteral("heif"), QStringLiteral("tiff"), QStringLiteral("webp")};
    return extensions.contains(QFileInfo(path).suffix().toLower());
}

/// The folder of a package's pictures, which are one picture in many sizes, and the pixels of this one.
struct PackagePicture {
    QString folder; ///< Empty for a picture of no package.
    qint64 pixels = 0;

    static PackagePicture of(const QString& path) {
        static const QRegularExpression form(
            QStringLiteral("^(.*/contents/images(?:_dark)?)/(\\d{1,5})x(\\d{1,5})\\.\\w+$"));
        const auto match = form.match(path);
        if (!match.hasMatch())
            return {};
        return {match.captured(1), match.captured(2).toLongLong() * match.captured(3).toLongLong()};
    }
};

/// Without the smaller sizes of packages.
QStringList onePerPackage(const QStringList& paths) {
    QHash<QString, qint64> most;
    for (const QString& path : paths)
        if (const auto picture = PackagePicture::of(path); !picture.folder.isEmpty())
            most[picture.folder] = std::max(most.value(picture.folder), picture.pixels);
    QStringList kept;
    for (const QString& path : paths) {
        const auto picture = PackagePicture::of(path);
        if (picture.folder.isEmpty() || picture.pixels == most.value(picture.folder))
            kept.append(path);
    }
    return kept;
}

/// The paths below a folder that may be candidates by their names, links to folders not followed: nobody's
/// photographs are reached by them, and no ring of them is run round in.
class FolderWalk {
public:
    FolderWalk(const std::stop_token& stop) : m_stop(stop) {}

    QStringList paths(const QString& folder) {
        m_paths.clear();
        m_entriesLeft = WallpaperScan::mostEntries;
        walk(folder, 0);
        if (m_stop.stop_requested())
            return {};
        m_paths.sort();
        return onePerPackage(m_paths);
    }

private:
    void walk(const QString& folder, int depth) {
        DIR* directory = opendir(QFile::encodeName(folder).constData());
        if (!directory)
            return;
        QStringList inner;
        while (const dirent* entry = readdir(directory)) {
            const QByteArrayView name(entry->d_name);
            if (name == "." || name == "..")
                continue;
            if (m_stop.stop_requested() || --m_entriesLeft < 0)
                break;
            const QString path = folder + u'/' + QFile::decodeName(name.toByteArray());
            if (isFolder(directory, *entry))
                inner.append(path);
            if ((isImage(path) || BackgroundDecoder::isVideo(QUrl::fromLocalFile(path))) && !isExcluded(path))
                m_paths.append(path);
        }
        closedir(directory);
        if (depth < deepestFolder)
            for (const QString& path : inner)
                walk(path, depth + 1);
    }

    static bool isFolder(DIR* directory, const dirent& entry) {
        if (entry.d_type != DT_UNKNOWN)
            return entry.d_type == DT_DIR;
        struct stat status {};
        return fstatat(dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
               S_ISDIR(status.st_mode);
    }

    const std::stop_token& m_stop;
    QStringList m_paths;
    int m_entriesLeft = 0;
};

/// Collects candidates, each file once.
class CandidateList {
public:
    explicit CandidateList(const WallpaperFolders& folders) : m_folders(folders) {}

    void addCurrent(const QUrl& url) {
        const QString path = QDir::cleanPath(url.toLocalFile());
        struct stat status {};
        if (!url.isLocalFile() || !readStatus(path, status) || !isNew(path))
            return;
        current.push_back(candidate(path, QStringLiteral("Current Wallpaper"), status));
        if (const auto picture = PackagePicture::of(path); !picture.folder.isEmpty())
            m_currentPackages.insert(picture.folder);
    }

    /// The files among these paths, which are those of one folder, that are wallpapers and not listed yet.
    void addFolder(const QStringList& paths, const std::stop_token& stop) {
        std::vector<WallpaperCandidate>& files = inFolders.emplace_back();
        for (const QString& path : paths) {
            if (stop.stop_requested() || files.size() >= WallpaperScan::mostInAll)
                return;
            struct stat status {};
            if (!readStatus(path, status) || m_currentPackages.contains(PackagePicture::of(path).folder))
                continue;
            const bool isInReference =
                !m_folders.referenceFolder.isEmpty() && path.contains(m_folders.referenceFolder);
            const qint64 smallest = isInReference ? smallestInReference : smallestElsewhere;
            const bool isLarge = S_ISREG(status.st_mode) && status.st_size > smallest;
            if ((isLarge || BackgroundDecoder::isVideo(QUrl::fromLocalFile(path))) && isNew(path))
                files.push_back(candidate(path, QFileInfo(path).fileName(), status));
        }
    }

    std::vector<WallpaperCandidate> current;
    std::vector<std::vector<WallpaperCandidate>> inFolders; ///< By folder, in the order of the calls.

private:
    static bool readStatus(const QString& path, struct stat& status) {
        return stat(QFile::encodeName(path).constData(), &status) == 0;
    }

    /// By what its links come to: the same file under two names is the same picture.
    bool isNew(const QString& path) {
        const QString file = QFileInfo(path).canonicalFilePath();
        const auto before = m_taken.size();
        m_taken.insert(file.isEmpty() ? path : file);
        return m_taken.size() > before;
    }

    static WallpaperCandidate candidate(const QString& path, const QString& name, const struct stat& status) {
        const QUrl url = QUrl::fromLocalFile(path);
        return {url, name, qint64(status.st_size), BackgroundDecoder::isVideo(url)};
    }

    const WallpaperFolders& m_folders;
    QSet<QString> m_taken;
    QSet<QString> m_currentPackages; ///< Offered already, in the size that the desktop shows.
};

/// How many files each folder may offer: the same for all that have as many, such that it comes to
/// `WallpaperScan::mostInAll`; what is left over by a division goes to the first ones.
std::vector<std::size_t> fairShares(const std::vector<std::vector<WallpaperCandidate>>& folders) {
    std::vector<std::size_t> shares(folders.size(), 0);
    std::size_t left = WallpaperScan::mostInAll;
    while (left > 0) {
        const std::size_t before = left;
        for (std::size_t i = 0; i < folders.size() && left > 0; ++i)
            if (shares[i] < folders[i].size()) {
                ++shares[i];
                --left;
            }
        if (left == before)
            break;
    }
    return shares;
}

} // namespace

WallpaperFolders WallpaperFolders::inHome(const QString& home) {
    return {{home + QStringLiteral("/Library/Desktop Pictures"), home + QStringLiteral("/Pictures"),
             QStringLiteral("/System/Library/Desktop Pictures"), QStringLiteral("/Library/Desktop Pictures"),
             QStringLiteral(
                 "/System/Library/ExtensionKit/Extensions/NeptuneOneWallpaper.appex/Contents/Resources"),
             QStringLiteral("/System/Library/AssetsV2/com_apple_MobileAsset_DesktopPicture"),
             QStringLiteral("/Library/Application Support/com.apple.idleassetsd/Customer/4KSDR240FPS"),
             home + QStringLiteral("/.local/share/backgrounds"),
             home + QStringLiteral("/.local/share/wallpapers"),
             QStringLiteral("/usr/local/share/backgrounds"), QStringLiteral("/usr/share/backgrounds"),
             QStringLiteral("/usr/share/wallpapers")},
            home + QStringLiteral("/Library/Application Support/com.apple.wallpaper/aerials/videos")};
}

std::vector<WallpaperCandidate> WallpaperScan::candidates(const std::vector<QUrl>& currentPictures,
                                                          const WallpaperFolders& folders,
                                                          const std::stop_token& stop) {
    CandidateList list(folders);
    for (const QUrl& url : currentPictures)
        list.addCurrent(url);
    FolderWalk walk(stop);
    for (const QString& folder : folders.folders)
        list.addFolder(walk.paths(folder), stop);
    std::vector<WallpaperCandidate> all = std::move(list.current);
    const std::vector<std::size_t> shares = fairShares(list.inFolders);
    for (std::size_t i = 0; i < shares.size(); ++i)
        std::move(list.inFolders[i].begin(), list.inFolders[i].begin() + std::ptrdiff_t(shares[i]),
                  std::back_inserter(all));
    return all;
}

} // namespace framora
