#include "desktop/wayland/odd/OddProgram.h"

#include <QDir>
#include <filesystem>
#include <unistd.h>

namespace framora {

namespace {

/// What this process has open, by number. Qt's pools keep their threads, and each thread its eventfd.
std::string openDescriptors() {
    std::string open;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QString& number : folder.entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)) {
        std::error_code gone; // The one that lists them.
        const auto target = std::filesystem::read_symlink(folder.filePath(number).toStdString(), gone);
        if (!gone && target != "anon_inode:[eventfd]")
            open += number.toStdString() + ' ' + target.string() + '\n';
    }
    return open;
}

} // namespace

OddProgram::OddProgram(CompositorScript script)
    : m_before(QProcessEnvironment::systemEnvironment()), m_descriptors(openDescriptors()) {
    compositor.emplace(std::move(script));
    for (const QString& name : compositor->environment().keys())
        qputenv(name.toLatin1().constData(), compositor->environment().value(name).toLocal8Bit());
    connect();
}

OddProgram::~OddProgram() {
    // Somebody else's copy ends the process that serves the program's.
    compositor->perform([](ScriptedPieces& pieces) { pieces.clipboard->offer({{"text/plain"}, {}}); });
    disconnect();
    EXPECT_EQ(compositor->leftovers(), QStringList());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return compositor->clients() == 0; }));
    const QStringList names = compositor->environment().keys();
    compositor.reset();
    for (const QString& name : names) {
        if (m_before.contains(name))
            qputenv(name.toLatin1().constData(), m_before.value(name).toLocal8Bit());
        else
            qunsetenv(name.toLatin1().constData());
    }
    EXPECT_EQ(openDescriptors(), m_descriptors);
}

void OddProgram::connect() {
    connection.emplace(1000);
    outputs.emplace(*connection);
    screens.emplace(*connection, *outputs);
    if (auto clipboard = WaylandClipboard::make(*connection))
        pasteboard.emplace(*connection, std::move(clipboard), [this](const QByteArray& file) {
            read = file;
            return QImage::fromData(file);
        });
    connection->listen();
}

void OddProgram::disconnect() {
    pasteboard.reset();
    screens.reset();
    outputs.reset();
    connection.reset();
}

void OddProgram::copy(std::vector<QByteArray> types, std::function<void(const QByteArray&, int)> send) {
    compositor->perform([&](ScriptedPieces& pieces) {
        pieces.clipboard->offer({std::move(types), std::move(send)});
    });
}

void OddProgram::copy(std::vector<QByteArray> types, const QByteArray& bytes) {
    copy(std::move(types), [bytes](const QByteArray&, int descriptor) {
        [[maybe_unused]] const ssize_t written =
            write(descriptor, bytes.constData(), std::size_t(bytes.size()));
        close(descriptor);
    });
}

int OddProgram::devices() {
    return compositor->ask<int>([](ScriptedPieces& pieces) { return pieces.clipboard->devices(); });
}

int OddProgram::offers() {
    return compositor->ask<int>([](ScriptedPieces& pieces) { return pieces.clipboard->offers(); });
}

} // namespace framora
