#pragma once

#include "platform/ScreenColorPicker.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <functional>

namespace framora {

class RecentColors;
class ScreenshotEditorViewModel;

/// Ties the one colour panel to the colour being edited: "customColor", "borderColor" or a gradient colour
/// such as "gradientConfig.color1". Every change goes to the style at once.
///
/// The panel's colour is kept as hue, saturation and value, so that a grey keeps its hue.
class ColorPanelBridge final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the editor session")
    Q_PROPERTY(QString field READ field NOTIFY fieldChanged)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY fieldChanged)
    Q_PROPERTY(bool takesKeys READ takesKeys NOTIFY fieldChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(double hue READ hue NOTIFY colorChanged)
    Q_PROPERTY(double saturation READ saturation NOTIFY colorChanged)
    Q_PROPERTY(double brightness READ brightness NOTIFY colorChanged)
    Q_PROPERTY(QStringList recentColors READ recentColors NOTIFY recentColorsChanged)
    Q_PROPERTY(bool canPickFromScreen READ canPickFromScreen NOTIFY screenPickingChanged)
    Q_PROPERTY(bool isPickingFromScreen READ isPickingFromScreen NOTIFY screenPickingChanged)

public:
    /// Asks the user for a pixel of the screen.
    using PickFromScreen = std::function<void(ScreenColorPicker::Picked)>;

    /// `recentColors` outlives the bridge.
    ColorPanelBridge(ScreenshotEditorViewModel& viewModel, RecentColors& recentColors,
                     QObject* parent = nullptr);
    ~ColorPanelBridge() override;

    QString field() const { return m_field; }
    bool isOpen() const { return !m_field.isEmpty(); }
    QColor color() const;
    double hue() const { return m_hue; }               ///< 0...1
    double saturation() const { return m_saturation; } ///< 0...1
    double brightness() const { return m_brightness; } ///< 0...1

    /// Starts editing `field`; a panel that is open moves over to it. A clear colour starts as white. Who
    /// opens it by the keyboard gives itself as `opener`: the panel then takes the keys, and hands them back.
    Q_INVOKABLE void open(const QString& field, QQuickItem* opener = nullptr);
    Q_INVOKABLE void close();
    bool takesKeys() const { return !m_opener.isNull(); }
    /// Around everything that one drag in the panel writes: one step for undo.
    Q_INVOKABLE void beginEdit();
    Q_INVOKABLE void endEdit();
    /// The user's choice: updates the panel and writes the field. Nothing while the panel is closed.
    Q_INVOKABLE void setColor(const QColor& color);
    Q_INVOKABLE void setHsv(double hue, double saturation, double brightness);

    /// "#rrggbb" each, the newest first. What a panel has made of its colour is among them once it is left.
    QStringList recentColors() const;
    /// Where the desktop can do that; an empty one where it cannot, as until this is called.
    void setPickFromScreen(PickFromScreen pick);
    bool canPickFromScreen() const { return bool(m_pickFromScreen); }
    bool isPickingFromScreen() const { return m_isPickingFromScreen; }
    /// Lets the user point at the colour; nothing while that is under way.
    Q_INVOKABLE void pickFromScreen();

Q_SIGNALS:
    void fieldChanged();
    void colorChanged();
    void recentColorsChanged();
    void screenPickingChanged();

private:
    QColor currentColor(const QString& field) const;
    void show(const QColor& color);
    void write();
    /// The panel's field is being left.
    void keepAsRecent();
    /// The style changed, perhaps by somebody else: undo, a preset, the dice.
    void follow();

    ScreenshotEditorViewModel& m_viewModel;
    RecentColors& m_recentColors;
    PickFromScreen m_pickFromScreen;
    bool m_isPickingFromScreen = false;
    QRgb m_colorAtOpening = 0;
    bool m_isOwnChoice = false; ///< What the panel shows was chosen in it, after it opened.
    QString m_field;
    QPointer<QQuickItem> m_opener;
    bool m_isWriting = false;
    double m_hue = 0;
    double m_saturation = 0;
    double m_brightness = 1;
};

} // namespace framora
