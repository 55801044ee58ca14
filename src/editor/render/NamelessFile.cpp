#include "editor/render/NamelessFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

bool nameIt(int descriptor, const QByteArray& name) {
    const QByteArray nameless = "/proc/self/fd/" + QByteArray::number(descriptor);
    return linkat(AT_FDCWD, nameless.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0;
}

} // namespace

NamelessFile::NamelessFile(const QString& path) {
    const QFileInfo given(path);
    const QString target = given.isSymLink() ? given.canonicalFilePath() : given.absoluteFilePath();
    const QFileInfo info(target);
    if (target.isEmpty() || (info.exists() && (!info.isFile() || !info.isWritable())))
        return;
    m_name = QFile::encodeName(target);
    m_folder = QFile::encodeName(info.absolutePath());
    m_descriptor = open(m_folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
}

NamelessFile::~NamelessFile() {
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void NamelessFile::write(std::span<const std::uint8_t> bytes) {
    while (m_error == 0 && !bytes.empty()) {
        const ssize_t count = ::write(m_descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            m_error = count < 0 ? errno : EIO;
        const auto written = std::size_t(std::max<ssize_t>(count, 0));
        bytes = bytes.subspan(written);
        startStoring(written);
    }
}

void NamelessFile::startStoring(std::size_t written) {
    constexpr off_t piece = 1 << 20;
    m_size += off_t(written);
    if (m_size - m_storing < piece)
        return;
    // Whether it succeeds is asked at the end.
    sync_file_range(m_descriptor, m_storing, m_size - m_storing, SYNC_FILE_RANGE_WRITE);
    m_storing = m_size;
}

void NamelessFile::clear() {
    const bool isEmpty = lseek(m_descriptor, 0, SEEK_SET) == 0 && ftruncate(m_descriptor, 0) == 0;
    m_error = isEmpty ? 0 : errno;
    m_size = m_storing = 0;
}

QString NamelessFile::error() const {
    return m_error == 0 ? QString() : qt_error_string(m_error);
}

bool NamelessFile::commit() {
    struct stat earlier {};
    const bool replaces = stat(m_name.constData(), &earlier) == 0;
    if (m_error != 0 || (replaces && fchmod(m_descriptor, earlier.st_mode & 07777) != 0))
        return false;
    if (fdatasync(m_descriptor) != 0)
        return false;
    if (!replaces && nameIt(m_descriptor, m_name))
        return true;

    // A name that is taken cannot be given directly: the file stands, whole, beside the earlier one for a
    // moment.
    const QByteArray beside =
        m_folder + "/.framora-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
    if (!nameIt(m_descriptor, beside))
        return false;
    if (std::rename(beside.constData(), m_name.constData()) == 0)
        return true;
    unlink(beside.constData());
    return false;
}

bool writeThroughNamelessFile(const QString& path, const QByteArray& bytes) {
    NamelessFile file(path);
    if (!file.isOpen())
        return false;
    file.write({reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(bytes.size())});
    return file.commit();
}

} // namespace framora
