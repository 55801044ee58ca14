#pragma once

#include "desktop/support/CaptureDescriptors.h"

#include <QImage>

namespace framora {

/// A session with nothing but its bus: the capture tool finds no display, so that only a portal is left. It
/// is started as the program starts it, with the two descriptors.
class PortalDesktop : public DesktopSession {
public:
    explicit PortalDesktop(bool sessionBus = true);
    ~PortalDesktop();

    /// Starts the tool with fresh descriptors.
    ChildProcess& launch(const QStringList& arguments);
    bool isReady() { return m_descriptors.isReady(); }
    QByteArray handedPicture() const { return m_descriptors.handedPicture(); }

    /// A picture's file of the portal's own, in the Pictures folder; its URI.
    QString leavePicture(const QImage& image, const QString& name = QStringLiteral("Screenshot äöü 1.png"));
    QString leaveFile(const QByteArray& contents, const QString& name);
    QString picturesPath() const { return homePath() + QStringLiteral("/Pictures"); }

private:
    CaptureDescriptors m_descriptors;
};

/// A picture in which no two neighbours are alike, with alpha where asked for.
QImage distinctPicture(const QSize& size, bool translucent = false);

} // namespace framora
