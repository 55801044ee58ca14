#include "desktop/support/CaptureDescriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {

CaptureDescriptors::~CaptureDescriptors() {
    closeBoth();
}

void CaptureDescriptors::closeBoth() {
    for (int* file : {&m_ready, &m_picture}) {
        if (*file >= 0)
            ::close(*file);
        *file = -1;
    }
}

ChildProcess& CaptureDescriptors::launch(DesktopSession& session, const QString& tool,
                                         const QStringList& arguments) {
    closeBoth();
    m_isReady = false;
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe for the capture tool");
    m_ready = ends[0];
    m_picture = ::memfd_create("picture", MFD_CLOEXEC);
    // Open in what is started next, and in nothing after it.
    for (const int file : {ends[1], m_picture})
        ::fcntl(file, F_SETFD, 0);
    session.setEnvironmentVariable(QStringLiteral("FRAMORA_READY_FD"), QString::number(ends[1]));
    session.setEnvironmentVariable(QStringLiteral("FRAMORA_PICTURE_FD"), QString::number(m_picture));
    ChildProcess& child = session.start(tool, arguments);
    ::close(ends[1]);
    ::fcntl(m_picture, F_SETFD, FD_CLOEXEC);
    return child;
}

bool CaptureDescriptors::isReady() {
    pollfd waiting = {m_ready, POLLIN, 0};
    char byte = 0;
    if (!m_isReady && ::poll(&waiting, 1, 0) > 0)
        m_isReady = ::read(m_ready, &byte, 1) == 1;
    return m_isReady;
}

QByteArray CaptureDescriptors::handedPicture() const {
    QByteArray bytes(qsizetype(::lseek(m_picture, 0, SEEK_END)), '\0');
    if (::pread(m_picture, bytes.data(), size_t(bytes.size()), 0) != bytes.size())
        throw std::runtime_error("the handed picture cannot be read");
    return bytes;
}

} // namespace framora
