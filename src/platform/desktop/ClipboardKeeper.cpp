#include "platform/desktop/ClipboardKeeper.h"

#include "platform/desktop/Installation.h"
#include "platform/desktop/MemoryFile.h"

#include <QProcess>

namespace framora {

namespace {
constexpr int patienceMilliseconds = 5000;
} // namespace

bool leaveWithClipboardKeeper(const QByteArray& png) {
    MemoryFile file("framora-picture");
    if (!file.write(png))
        return false;
    QProcess process;
    // No pipes from it: the process it leaves behind would keep them open.
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setStandardInputFile(file.path());
    process.start(privateExecutable(QStringLiteral("framora-clipboard")), QStringList());
    if (!process.waitForFinished(patienceMilliseconds)) {
        process.kill();
        process.waitForFinished(patienceMilliseconds);
        return false;
    }
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace framora
