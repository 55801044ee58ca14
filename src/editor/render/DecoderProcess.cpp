#include "editor/render/DecoderProcess.h"

#include "editor/render/SrgbPicture.h"
#include "editor/render/decoders/DecodedPicture.h"
#include "editor/render/decoders/DecoderRequest.h"
#include "platform/desktop/Installation.h"

#include <QColorSpace>
#include <QDeadlineTimer>
#include <QFile>
#include <QScopeGuard>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace framora {
namespace {

/// Beyond its own bound in seconds, for its start; then it is ended from here.
constexpr unsigned decoderGrace = 3;
constexpr qint64 mebibyte = 1 << 20;

/// Waits for the end of a child without collecting it, and brings that end about after so many seconds.
void awaitEnd(pid_t child, unsigned seconds) {
    const int descriptor = int(syscall(SYS_pidfd_open, child, 0));
    if (descriptor < 0) // an old kernel: it ends itself in time
        return;
    const QDeadlineTimer deadline(qint64(seconds) * 1000);
    pollfd waiting{descriptor, POLLIN, 0};
    while (poll(&waiting, 1, int(deadline.remainingTime())) < 0 && errno == EINTR) {
    }
    if (!(waiting.revents & POLLIN))
        kill(child, SIGKILL);
    close(descriptor);
}

/// Ours, and large pages for what a decoder takes: half of what it waits for is fresh memory.
std::vector<char*> decoderEnvironment(QByteArray& tunables) {
    constexpr char name[] = "GLIBC_TUNABLES=";
    std::vector<char*> environment;
    for (char** variable = environ; *variable; ++variable) {
        if (QByteArrayView(*variable).startsWith(name))
            tunables = QByteArray(*variable) + ':';
        else
            environment.push_back(*variable);
    }
    if (tunables.isEmpty())
        tunables = name;
    tunables += "glibc.malloc.hugetlb=1";
    environment.push_back(tunables.data());
    environment.push_back(nullptr);
    return environment;
}

/// Runs the program with these standard streams until it ends. In a process group of its own: an interrupt at
/// the terminal is for the program that waits.
bool runDecoder(const QByteArray& program, int input, int output, const DecoderOrder& order) {
    posix_spawn_file_actions_t streams;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&streams);
    posix_spawnattr_init(&attributes);
    const auto destroy = qScopeGuard([&] {
        posix_spawn_file_actions_destroy(&streams);
        posix_spawnattr_destroy(&attributes);
    });
    posix_spawn_file_actions_adddup2(&streams, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&streams, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&streams, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);

    const DecoderRequest whole;
    const QByteArray texts[] = {QByteArray::number(std::max(order.box.width(), 0)),
                                QByteArray::number(std::max(order.box.height(), 0)),
                                QByteArray::number(order.seconds > 0 ? order.seconds : whole.seconds),
                                QByteArray::number(order.threads),
                                QByteArray::number(order.bytes > 0 ? (order.bytes + mebibyte - 1) / mebibyte
                                                                   : qint64(whole.mebibytes))};
    std::vector<char*> arguments{const_cast<char*>(program.constData())};
    for (const QByteArray& text : texts)
        arguments.push_back(const_cast<char*>(text.constData()));
    arguments.push_back(nullptr);
    QByteArray tunables;
    const std::vector<char*> environment = decoderEnvironment(tunables);
    pid_t child = 0;
    const int error =
        posix_spawn(&child, program.constData(), &streams, &attributes, arguments.data(), environment.data());
    if (error != 0) {
        qWarning("framora: %s: %s", program.constData(), std::strerror(error));
        return false;
    }
    {
        // Only while its number is its own: until it is collected below.
        const std::stop_callback ending(order.stop, [child] { kill(child, SIGKILL); });
        awaitEnd(child, (order.seconds > 0 ? order.seconds : whole.seconds) + decoderGrace);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return errno == ECHILD; // somebody else has collected it: what it left tells
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

struct Mapping {
    void* memory;
    std::size_t bytes;
};

void unmap(void* mapping) {
    const std::unique_ptr<Mapping> owned(static_cast<Mapping*>(mapping));
    munmap(owned->memory, owned->bytes);
}

/// The picture in the memory file, whose pages become the image's own. What the decoder may have left running
/// can write into them still, but not take them away.
QImage takePicture(int descriptor) {
    struct stat status {};
    if (fcntl(descriptor, F_ADD_SEALS, F_SEAL_SHRINK) != 0)
        return {};
    if (fstat(descriptor, &status) != 0 || status.st_size < off_t(DecodedPicture::pixelsOffset))
        return {};
    const auto fileBytes = std::size_t(status.st_size);
    void* memory = mmap(nullptr, fileBytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, descriptor, 0);
    if (memory == MAP_FAILED && errno == ENOMEM)
        throw std::bad_alloc();
    if (memory == MAP_FAILED)
        return {};
    auto mapping = std::make_unique<Mapping>(Mapping{memory, fileBytes});
    auto unmapUnused = qScopeGuard([&] { unmap(mapping.release()); });

    DecodedPicture picture{};
    std::memcpy(&picture, memory, sizeof picture);
    if (picture.state != DecodedPicture::finished || picture.width < 1 || picture.height < 1 ||
        !isWithinPictureBounds(picture.width, picture.height))
        return {};
    const std::size_t pixelsEnd =
        DecodedPicture::pixelsOffset + DecodedPicture::pixelBytes(picture.width, picture.height);
    if (pixelsEnd + picture.profileBytes != fileBytes)
        return {};

    auto* bytes = static_cast<uchar*>(memory);
    const QByteArray profile(reinterpret_cast<const char*>(bytes + pixelsEnd), picture.profileBytes);
    // Opaque pixels are the same in both formats. The one is not copied any more, the other is converted with
    // less.
    const QImage::Format format =
        picture.hasAlpha || profile.isEmpty() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    QImage image(bytes + DecodedPicture::pixelsOffset, picture.width, picture.height,
                 qsizetype(picture.width) * 4, format, unmap, mapping.get());
    if (image.isNull())
        return {};
    unmapUnused.dismiss();
    static_cast<void>(mapping.release()); // the image's
    if (!profile.isEmpty())
        image.setColorSpace(QColorSpace::fromIccProfile(profile));
    return image;
}

} // namespace

QImage decodeInProcess(const QString& decoder, int fileDescriptor, const DecoderOrder& order) {
    // Above the standard streams, which may be closed here: the decoder's are made of these.
    const int input = fcntl(fileDescriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int made = memfd_create("framora-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    const int output = made < 0 ? -1 : fcntl(made, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const auto closeAll = qScopeGuard([=] {
        for (const int descriptor : {input, made, output})
            if (descriptor >= 0)
                close(descriptor);
    });
    if (input < 0 || output < 0 ||
        !runDecoder(QFile::encodeName(privateExecutable(decoder)), input, output, order))
        return {};
    return srgbPicture(takePicture(output));
}

} // namespace framora
