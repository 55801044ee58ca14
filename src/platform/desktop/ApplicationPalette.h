#pragma once

#include <QColor>
#include <QPalette>

namespace framora {

/// The colours of everything the toolkit draws: preferences, menus, file and message dialogs. Where the
/// desktop gave the toolkit a palette that agrees with what the desktop says of itself, that one stays.
class ApplicationPalette {
public:
    /// Text, controls and backgrounds in light or dark, with the accent for what is selected.
    static QPalette drawn(bool dark, const QColor& accent);

    /// The palette the desktop, or whoever set one but this object, gave the toolkit.
    QPalette ofDesktop() const;
    /// Gives the application its colours; changes nothing when it has them.
    void apply(bool dark, const QColor& accent);

private:
    bool oursIsOn() const;
    void put(const QPalette& palette);

    QPalette m_ofDesktop; ///< As it was when ours came over it.
    QPalette m_ours;      ///< As the toolkit completed it.
    bool m_oursIsOn = false;
    bool m_changing = false;
    bool m_dark = false;
    QColor m_accent;
};

} // namespace framora
