#include "desktop/kwin/CapturePermission.h"

#include "desktop/support/KwinDesktop.h"

#include <QCoreApplication>
#include <QFile>

#include <stdexcept>

namespace framora {

QByteArray permissionFor(const QString& executable) {
    QFile file(QStringLiteral(FRAMORA_CAPTURE_ENTRY));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no desktop entry of the capture tool");
    return file.readAll().replace("@FRAMORA_CAPTURE_TOOL@", executable.toUtf8());
}

void permitThisTest(KwinDesktop& desktop) {
    desktop.installDesktopEntry(QStringLiteral("test.desktop"),
                                permissionFor(QCoreApplication::applicationFilePath()));
    if (!DesktopSession::waitFor([&] { return !desktop.screenshot().isNull(); }))
        throw std::runtime_error("KWin does not permit the test to look at it");
}

} // namespace framora
