#include "editor/views/ColorPanelBridge.h"

#include "editor/model/RecentColors.h"
#include "editor/model/ScreenshotEditorViewModel.h"

#include <algorithm>
#include <utility>

namespace framora {

ColorPanelBridge::ColorPanelBridge(ScreenshotEditorViewModel& viewModel, RecentColors& recentColors,
                                   QObject* parent)
    : QObject(parent), m_viewModel(viewModel), m_recentColors(recentColors) {
    connect(&viewModel, &ScreenshotEditorViewModel::configChanged, this, &ColorPanelBridge::follow);
    connect(&recentColors, &RecentColors::changed, this, &ColorPanelBridge::recentColorsChanged);
}

ColorPanelBridge::~ColorPanelBridge() {
    keepAsRecent();
}

QColor ColorPanelBridge::color() const {
    return QColor::fromHsvF(float(m_hue), float(m_saturation), float(m_brightness)).toRgb();
}

QColor ColorPanelBridge::currentColor(const QString& field) const {
    if (field == u"customColor")
        return m_viewModel.customColor();
    if (field == u"borderColor")
        return m_viewModel.borderColor();
    if (field == u"gradientConfig.color1")
        return m_viewModel.gradientColor1();
    if (field == u"gradientConfig.color2")
        return m_viewModel.gradientColor2();
    if (field == u"gradientConfig.color3")
        return m_viewModel.gradientColor3();
    return {};
}

void ColorPanelBridge::open(const QString& field, QQuickItem* opener) {
    const QColor current = currentColor(field);
    if (!current.isValid())
        return;
    keepAsRecent();
    show(current.alpha() == 0 ? QColor(Qt::white) : current);
    m_colorAtOpening = color().rgb();
    m_isOwnChoice = false;
    m_opener = opener;
    if (m_field != field) {
        m_field = field;
        Q_EMIT fieldChanged();
    }
}

void ColorPanelBridge::close() {
    if (m_field.isEmpty())
        return;
    keepAsRecent();
    m_field.clear();
    const QPointer<QQuickItem> opener = std::exchange(m_opener, nullptr);
    Q_EMIT fieldChanged();
    if (opener)
        opener->forceActiveFocus(Qt::TabFocusReason);
}

void ColorPanelBridge::keepAsRecent() {
    if (isOpen() && m_isOwnChoice && color().rgb() != m_colorAtOpening)
        m_recentColors.add(color());
}

QStringList ColorPanelBridge::recentColors() const {
    return m_recentColors.names();
}

void ColorPanelBridge::setPickFromScreen(PickFromScreen pick) {
    m_pickFromScreen = std::move(pick);
    Q_EMIT screenPickingChanged();
}

void ColorPanelBridge::pickFromScreen() {
    if (!isOpen() || !m_pickFromScreen || m_isPickingFromScreen)
        return;
    m_isPickingFromScreen = true;
    Q_EMIT screenPickingChanged();
    m_pickFromScreen([self = QPointer(this), field = m_field](std::optional<QColor> picked) {
        if (!self)
            return;
        self->m_isPickingFromScreen = false;
        Q_EMIT self->screenPickingChanged();
        // The panel may have moved on to another field, whose colour was not meant.
        if (!picked || self->m_field != field)
            return;
        self->setColor(*picked);
        self->m_recentColors.add(*picked);
    });
}

void ColorPanelBridge::beginEdit() {
    if (isOpen())
        m_viewModel.beginEdit(m_field);
}

void ColorPanelBridge::endEdit() {
    m_viewModel.endEdit();
}

void ColorPanelBridge::show(const QColor& color) {
    const QColor hsv = color.toHsv();
    if (hsv.hsvHueF() >= 0.0F)
        m_hue = hsv.hsvHueF();
    m_saturation = hsv.hsvSaturationF();
    m_brightness = hsv.valueF();
    Q_EMIT colorChanged();
}

void ColorPanelBridge::setColor(const QColor& color) {
    if (!isOpen() || !color.isValid())
        return;
    show(color);
    write();
}

void ColorPanelBridge::setHsv(double hue, double saturation, double brightness) {
    if (!isOpen())
        return;
    m_hue = std::clamp(hue, 0.0, 1.0);
    m_saturation = std::clamp(saturation, 0.0, 1.0);
    m_brightness = std::clamp(brightness, 0.0, 1.0);
    Q_EMIT colorChanged();
    write();
}

void ColorPanelBridge::write() {
    m_isOwnChoice = true;
    m_isWriting = true;
    if (m_field == u"customColor")
        m_viewModel.pickCustomColor(color());
    else
        m_viewModel.set(m_field, color());
    m_isWriting = false;
}

void ColorPanelBridge::follow() {
    if (!isOpen() || m_isWriting)
        return;
    // Undo and presets take the third colour away as well.
    if (m_field == u"gradientConfig.color3" && !m_viewModel.config().gradientConfig.useThreeColors) {
        close();
        return;
    }
    // A colour that a preset has cleared leaves the panel where it is.
    const QColor current = currentColor(m_field);
    if (current.alpha() > 0 && current.rgb() != color().rgb()) {
        show(current);
        m_isOwnChoice = false;
    }
}

} // namespace framora
