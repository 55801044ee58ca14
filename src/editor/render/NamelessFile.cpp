#include "editor/render/NamelessFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor() {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return m_descriptor; }

private:
    const int m_descriptor;
};

bool writeAll(int descriptor, const QByteArray& bytes) {
    for (qsizetype written = 0; written < bytes.size();) {
        const ssize_t count =
            write(descriptor, bytes.constData() + written, std::size_t(bytes.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

bool nameIt(int descriptor, const QByteArray& name) {
    const QByteArray nameless = "/proc/self/fd/" + QByteArray::number(descriptor);
    return linkat(AT_FDCWD, nameless.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0;
}

} // namespace

bool writeThroughNamelessFile(const QString& path, const QByteArray& bytes) {
    const QFileInfo given(path);
    const QString target = given.isSymLink() ? given.canonicalFilePath() : given.absoluteFilePath();
    const QFileInfo info(target);
    if (target.isEmpty() || (info.exists() && (!info.isFile() || !info.isWritable())))
        return false;

    const QByteArray name = QFile::encodeName(target);
    const QByteArray folder = QFile::encodeName(info.absolutePath());
    const Descriptor file(open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
    if (file < 0 || !writeAll(file, bytes))
        return false;
    struct stat earlier {};
    const bool replaces = stat(name.constData(), &earlier) == 0;
    if (replaces && fchmod(file, earlier.st_mode & 07777) != 0)
        return false;
    fdatasync(file);
    if (!replaces && nameIt(file, name))
        return true;

    // A name that is taken cannot be given directly: the file stands, whole, beside the earlier one for a
    // moment.
    const QByteArray beside =
        folder + "/.framora-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    if (!nameIt(file, beside))
        return false;
    if (std::rename(beside.constData(), name.constData()) == 0)
        return true;
    unlink(beside.constData());
    return false;
}

} // namespace framora
