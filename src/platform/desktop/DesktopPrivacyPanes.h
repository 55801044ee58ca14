#pragma once

#include "platform/PrivacyPanes.h"

#include <QString>
#include <QStringList>

namespace framora {

/// The settings programs of the desktops, at the pages that come nearest.
class DesktopPrivacyPanes final : public PrivacyPanes {
public:
    /// `desktop` as in XDG_CURRENT_DESKTOP: names from the most to the least special, with colons between.
    explicit DesktopPrivacyPanes(const QString& desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    bool hasPage(PrivacyPane pane) const override;
    bool openPage(PrivacyPane pane) override;
    bool openPrivacyOverview() override;
    bool openSettingsProgram() override;

private:
    struct Routes;
    using Route = const char* Routes::*;
    static Route routeTo(PrivacyPane pane);
    /// The program with its arguments; empty where there is none.
    QStringList command(Route route) const;
    bool open(Route route) const;

    QStringList m_desktops;
};

} // namespace framora
