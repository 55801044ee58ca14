#include "platform/desktop/MemoryFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {

MemoryFile::MemoryFile(const char* label) : m_descriptor(memfd_create(label, MFD_CLOEXEC)) {}

MemoryFile::~MemoryFile() {
    if (m_descriptor >= 0)
        close(m_descriptor);
}

QString MemoryFile::path() const {
    return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor);
}

bool MemoryFile::write(const QByteArray& bytes) {
    if (m_descriptor < 0 || ftruncate(m_descriptor, 0) != 0)
        return false;
    for (qsizetype written = 0; written < bytes.size();) {
        const ssize_t count = pwrite(m_descriptor, bytes.constData() + written,
                                     static_cast<std::size_t>(bytes.size() - written), written);
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

QByteArray MemoryFile::contents(qint64 most) const {
    struct stat status {};
    if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0 || status.st_size <= 0 || status.st_size > most)
        return {};
    QByteArray bytes(status.st_size, Qt::Uninitialized);
    qsizetype read = 0;
    while (read < bytes.size()) {
        const ssize_t count =
            pread(m_descriptor, bytes.data() + read, static_cast<std::size_t>(bytes.size() - read), read);
        // Whoever else has the file may cut it short.
        if (count <= 0)
            return {};
        read += count;
    }
    return bytes;
}

} // namespace framora
