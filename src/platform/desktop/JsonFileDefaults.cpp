#include "platform/desktop/JsonFileDefaults.h"

#include "platform/RegularFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace framora {

namespace {

using Json = nlohmann::ordered_json;

constexpr qint64 largestFile = 16 << 20;
constexpr int lockAttempts = 50;
constexpr std::chrono::milliseconds lockPause{10};
constexpr std::chrono::seconds retryPause{5};

class FileDescriptor {
public:
    explicit FileDescriptor(int value) : m_value(value) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isOpen() const { return m_value >= 0; }
    int value() const { return m_value; }
    bool close() { return m_value < 0 || ::close(std::exchange(m_value, -1)) == 0; }

private:
    int m_value;
};

/// An empty object for a file that is missing, no object for a damaged one; nothing for one that must not be
/// read, or is no file of ours: a pipe, a device, or one that the program would take long for at every start.
std::optional<Json> readFile(const QString& path) {
    QFile file;
    if (!openRegularFile(file, path))
        return QFileInfo::exists(path) ? std::nullopt : std::optional(Json::object());
    if (file.size() > largestFile)
        return std::nullopt;
    return Json::parse(file.readAll().toStdString(), nullptr, false);
}

/// The same with an empty object for a damaged file too.
std::optional<Json> readObject(const QString& path) {
    std::optional<Json> content = readFile(path);
    if (content && !content->is_object())
        content = Json::object();
    return content;
}

bool writeAll(int descriptor, const std::string& bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const auto count = write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

/// Keeps other savers of the folder's files away until the folder is closed. A saver that is killed gives way
/// at once; one that hangs is not waited for. True too where the file system knows no locks.
bool lockFolder(int folder) {
    for (int attempt = 0; attempt < lockAttempts; ++attempt) {
        if (flock(folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
            return true;
        std::this_thread::sleep_for(lockPause);
    }
    return false;
}

/// Writes beside the file and moves the whole over it. The name beside it is always the same, so that what a
/// killed process left there goes with the next save; the folder's lock keeps it to one saver.
bool replaceFile(const QString& path, int folder, const std::string& bytes) {
    const QByteArray target = QFile::encodeName(path);
    const QByteArray beside = target + ".new";
    struct stat old {};
    const mode_t mode = stat(target.constData(), &old) == 0 ? old.st_mode & 07777 : 0600;
    unlink(beside.constData());
    FileDescriptor file(open(beside.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen())
        return false;
    const bool whole =
        writeAll(file.value(), bytes) && fchmod(file.value(), mode) == 0 && fsync(file.value()) == 0;
    if (file.close() && whole && rename(beside.constData(), target.constData()) == 0) {
        // The new name lasts too; where a folder cannot be synced, it is in place all the same.
        fsync(folder);
        return true;
    }
    unlink(beside.constData());
    return false;
}

/// The file that the path stands for: a link to a file kept elsewhere stays a link, also before the file is
/// there.
QString linkTarget(QString path) {
    constexpr int longestChain = 40; // The kernel's own limit.
    for (int links = 0; links < longestChain; ++links) {
        const QFileInfo file(path);
        if (!file.isSymLink())
            return path;
        path = file.symLinkTarget();
    }
    return path;
}

} // namespace

QString JsonFileDefaults::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/framora/defaults.json");
}

JsonFileDefaults::JsonFileDefaults(QString path, std::chrono::milliseconds calm)
    : m_path(std::move(path)), m_calm(calm) {
    m_saving.setSingleShot(true);
    m_saving.setTimerType(Qt::PreciseTimer);
    m_saving.callOnTimeout([this] { storePending(); });
}

JsonFileDefaults::~JsonFileDefaults() {
    storePending();
}

std::optional<std::string> JsonFileDefaults::dataForKey(const std::string& key) const {
    if (const auto kept = m_pending.find(key); kept != m_pending.end())
        return kept->second;
    const auto object = readObject(m_path);
    if (!object)
        return std::nullopt;
    const auto member = object->find(key);
    if (member == object->end())
        return std::nullopt;
    return member->dump();
}

bool JsonFileDefaults::isEmpty() const {
    if (isSavePending())
        return false;
    const auto content = readFile(m_path);
    return content && content->is_object() && content->empty();
}

bool JsonFileDefaults::setData(const std::string& key, const std::string& json) {
    const Json value = Json::parse(json, nullptr, false);
    if (value.is_discarded())
        return false;
    const bool isStep = m_sinceSave.isValid() && std::chrono::milliseconds(m_sinceSave.elapsed()) < m_calm;
    // Without an event loop nobody would come back to it.
    if (isStep && QThread::currentThread()->loopLevel() > 0) {
        m_pending[key] = value.dump();
        if (!m_saving.isActive() || m_saving.remainingTimeAsDuration() > m_calm)
            m_saving.start(m_calm);
        if (!m_atQuit)
            m_atQuit = QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit,
                                        &m_saving, [this] { storePending(); });
    } else {
        Values values = m_pending;
        values[key] = value.dump();
        if (!store(values))
            return false;
        m_pending.clear();
        m_saving.stop();
    }
    m_sinceSave.start();
    return true;
}

bool JsonFileDefaults::store(const Values& values) const {
    const QString path = linkTarget(m_path);
    const QString folderPath = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folderPath))
        return false;
    const FileDescriptor folder(
        open(QFile::encodeName(folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen() || !lockFolder(folder.value()))
        return false;
    auto object = readObject(path);
    if (!object)
        return false;
    for (const auto& [key, value] : values)
        (*object)[key] = Json::parse(value);
    return replaceFile(path, folder.value(), object->dump(4) + '\n');
}

void JsonFileDefaults::storePending() {
    m_saving.stop();
    if (m_pending.empty())
        return;
    if (store(m_pending)) {
        m_pending.clear();
        return;
    }
    qWarning("%s cannot be written", qPrintable(m_path));
    m_saving.start(retryPause);
}

} // namespace framora
