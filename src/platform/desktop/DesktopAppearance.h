#pragma once

#include "platform/Appearance.h"
#include "platform/NotificationCenter.h"
#include "platform/desktop/ApplicationPalette.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>
#include <optional>

namespace framora {

/// What the desktop says of its look: the Settings portal first and live, then the convention of naming dark
/// themes, then Qt's own palette. The portal is asked without waiting; its answer counts from when it
/// arrives.
class DesktopAppearance final : public QObject, public Appearance {
    Q_OBJECT

public:
    /// The notification centre outlives this.
    explicit DesktopAppearance(NotificationCenter& notifications,
                               const QDBusConnection& bus = QDBusConnection::sessionBus());

    /// From now on what the toolkit draws follows this appearance.
    void colorApplication();

    bool isDark() const override;
    QColor accentColor() const override;
    bool prefersReducedMotion() const override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    struct Look {
        bool dark;
        QColor accent;
        bool reducedMotion;
        friend bool operator==(const Look&, const Look&) = default;
    };

    void askPortal(QDBusConnection bus);
    void take(const QString& group, const QString& key, const QVariant& value);
    void announceChange();
    Look look() const { return {isDark(), accentColor(), prefersReducedMotion()}; }

    NotificationCenter& m_notifications;
    ApplicationPalette m_palette;
    bool m_colorsApplication = false;
    std::optional<bool> m_portalDark; ///< Nothing when the desktop has no preference.
    std::optional<QColor> m_portalAccent;
    std::optional<QString> m_themeName;
    mutable std::optional<QString> m_x11ThemeName; ///< Asked for when it is first needed.
    bool m_reducedMotion = false;
    bool m_animationsOff = false;
    Look m_announced;
};

} // namespace framora
