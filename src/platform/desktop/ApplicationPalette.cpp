#include "platform/desktop/ApplicationPalette.h"

#include <QGuiApplication>

namespace framora {

namespace {

/// `part` of the colour `over` laid on `under`.
QColor mixed(const QColor& under, const QColor& over, double part) {
    const auto channel = [part](int u, int o) { return qRound(u + (o - u) * part); };
    return {channel(under.red(), over.red()), channel(under.green(), over.green()),
            channel(under.blue(), over.blue())};
}

/// White or black, whichever reads better on the colour.
QColor textOn(const QColor& color) {
    const double luma = 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
    return luma > 0.6 ? QColor(Qt::black) : QColor(Qt::white);
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < 128;
}

} // namespace

QPalette ApplicationPalette::drawn(bool dark, const QColor& accent) {
    const QColor window = dark ? QColor(0x24, 0x25, 0x28) : QColor(0xf4, 0xf4, 0xf6);
    const QColor text = dark ? QColor(0xec, 0xec, 0xee) : QColor(0x1d, 0x1d, 0x20);
    const QColor base = dark ? QColor(0x1b, 0x1c, 0x1e) : QColor(Qt::white);
    const QColor button = dark ? QColor(0x34, 0x35, 0x39) : QColor(0xfb, 0xfb, 0xfc);
    const QColor black(Qt::black);
    const QColor white(Qt::white);

    QPalette palette;
    const auto everywhere = [&palette](QPalette::ColorRole role, const QColor& color) {
        palette.setColor(QPalette::All, role, color);
    };
    everywhere(QPalette::Window, window);
    everywhere(QPalette::WindowText, text);
    everywhere(QPalette::Base, base);
    everywhere(QPalette::AlternateBase, mixed(base, text, 0.04));
    everywhere(QPalette::Text, text);
    everywhere(QPalette::PlaceholderText, mixed(base, text, 0.5));
    everywhere(QPalette::Button, button);
    everywhere(QPalette::ButtonText, text);
    everywhere(QPalette::BrightText, white);
    everywhere(QPalette::ToolTipBase, dark ? QColor(0x3a, 0x3b, 0x3f) : white);
    everywhere(QPalette::ToolTipText, text);
    everywhere(QPalette::Light, mixed(button, white, dark ? 0.10 : 0.8));
    everywhere(QPalette::Midlight, mixed(button, white, dark ? 0.05 : 0.4));
    everywhere(QPalette::Mid, mixed(window, dark ? white : black, 0.22));
    everywhere(QPalette::Dark, mixed(window, black, dark ? 0.4 : 0.3));
    everywhere(QPalette::Shadow, mixed(window, black, dark ? 0.7 : 0.6));
    everywhere(QPalette::Highlight, accent);
    everywhere(QPalette::HighlightedText, textOn(accent));
    const QColor link = mixed(accent, dark ? white : black, dark ? 0.25 : 0.1);
    everywhere(QPalette::Link, link);
    everywhere(QPalette::LinkVisited, mixed(link, window, 0.3));

    const QColor faint = mixed(window, text, 0.4);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, mixed(window, text, 0.2));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faint);
    return palette;
}

bool ApplicationPalette::oursIsOn() const {
    return m_oursIsOn && (m_changing || QGuiApplication::palette() == m_ours);
}

QPalette ApplicationPalette::ofDesktop() const {
    return oursIsOn() ? m_ofDesktop : QGuiApplication::palette();
}

void ApplicationPalette::apply(bool dark, const QColor& accent) {
    if (m_changing)
        return;
    const QPalette desktops = ofDesktop();
    const bool agrees = isDark(desktops) == dark &&
                        desktops.color(QPalette::Active, QPalette::Highlight).rgb() == accent.rgb();
    const bool ours = oursIsOn();
    if (agrees ? !ours : ours && m_dark == dark && m_accent == accent)
        return;
    m_ofDesktop = desktops;
    m_oursIsOn = true;
    m_dark = dark;
    m_accent = accent;
    put(agrees ? desktops : drawn(dark, accent));
    m_oursIsOn = !agrees;
}

void ApplicationPalette::put(const QPalette& palette) {
    // Whoever hears of the change asks for the desktop's palette, and must not be told ours.
    m_changing = true;
    QGuiApplication::setPalette(palette);
    m_ours = QGuiApplication::palette();
    m_changing = false;
}

} // namespace framora
