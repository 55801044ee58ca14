#pragma once

#include "desktop/support/DesktopSession.h"

#include <QImage>

#include <optional>

namespace framora {

/// A session with nothing but its bus: the capture tool finds no display, so that only a portal is left. It
/// is started as the program starts it, with the two descriptors.
class PortalDesktop : public DesktopSession {
public:
    explicit PortalDesktop(bool sessionBus = true);
    ~PortalDesktop();

    /// Starts the tool; what an earlier one left in the descriptors is forgotten.
    ChildProcess& launch(const QStringList& arguments);
    /// Whether the tool has said that it has a route.
    bool isReady();
    /// What the tool handed over; null when nothing.
    QByteArray handedPicture() const;

    /// A picture's file of the portal's own, in the Pictures folder; its URI.
    QString leavePicture(const QImage& image, const QString& name = QStringLiteral("Screenshot äöü 1.png"));
    QString leaveFile(const QByteArray& contents, const QString& name);
    QString picturesPath() const { return homePath() + QStringLiteral("/Pictures"); }

private:
    void closeDescriptors();

    int m_ready = -1;
    int m_picture = -1;
    bool m_isReady = false;
};

/// A picture in which no two neighbours are alike, with alpha where asked for.
QImage distinctPicture(const QSize& size, bool translucent = false);

} // namespace framora
