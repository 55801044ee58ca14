#include "platform/desktop/JsonFileDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {

namespace {

using Json = nlohmann::ordered_json;

/// An empty object for a file that is missing or damaged.
Json readObject(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Json::object();
    Json object = Json::parse(file.readAll().toStdString(), nullptr, false);
    return object.is_object() ? object : Json::object();
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

/// Writes beside the file and moves the whole over it. The name beside it is always the same, so that what a
/// killed process left there is written over by the next.
bool replaceFile(const QString& path, const std::string& bytes) {
    const QByteArray target = QFile::encodeName(path);
    const QByteArray beside = target + ".new";
    struct stat old {};
    const mode_t mode = stat(target.constData(), &old) == 0 ? old.st_mode & 07777 : 0600;
    unlink(beside.constData());
    const int descriptor = open(beside.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0)
        return false;
    const bool whole = writeAll(descriptor, bytes) && fsync(descriptor) == 0;
    const bool closed = close(descriptor) == 0;
    if (whole && closed && rename(beside.constData(), target.constData()) == 0)
        return true;
    unlink(beside.constData());
    return false;
}

} // namespace

QString JsonFileDefaults::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/framora/defaults.json");
}

std::optional<std::string> JsonFileDefaults::dataForKey(const std::string& key) const {
    const Json object = readObject(m_path);
    const auto member = object.find(key);
    if (member == object.end())
        return std::nullopt;
    return member->dump();
}

bool JsonFileDefaults::setData(const std::string& key, const std::string& json) {
    Json value = Json::parse(json, nullptr, false);
    if (value.is_discarded())
        return false;
    // A link to a file kept elsewhere stays a link.
    const QFileInfo file(m_path);
    const QString path = file.exists() ? file.canonicalFilePath() : m_path;
    if (!QDir().mkpath(QFileInfo(path).path()))
        return false;
    Json object = readObject(path);
    object[key] = std::move(value);
    return replaceFile(path, object.dump(4) + '\n');
}

} // namespace framora
