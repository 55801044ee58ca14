#pragma once

#include "desktop/support/DesktopSession.h"

#include <QByteArray>

namespace framora {

/// The two descriptors that the program gives its capture tool: by one the tool tells that it has a route, in
/// the other it leaves a picture where it owns no clipboard.
class CaptureDescriptors {
public:
    CaptureDescriptors() = default;
    ~CaptureDescriptors();
    CaptureDescriptors(const CaptureDescriptors&) = delete;
    CaptureDescriptors& operator=(const CaptureDescriptors&) = delete;

    /// Starts the tool with fresh ones; what an earlier one left in them is forgotten.
    ChildProcess& launch(DesktopSession& session, const QString& tool, const QStringList& arguments);
    /// Whether the tool has said that it has a route.
    bool isReady();
    /// What the tool handed over; empty when nothing.
    QByteArray handedPicture() const;

private:
    void closeBoth();

    int m_ready = -1;
    int m_picture = -1;
    bool m_isReady = false;
};

} // namespace framora
