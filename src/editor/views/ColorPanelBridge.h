#pragma once

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace framora {

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

public:
    explicit ColorPanelBridge(ScreenshotEditorViewModel& viewModel, QObject* parent = nullptr);

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

Q_SIGNALS:
    void fieldChanged();
    void colorChanged();

private:
    QColor currentColor(const QString& field) const;
    void show(const QColor& color);
    void write();
    /// The style changed, perhaps by somebody else: undo, a preset, the dice.
    void follow();

    ScreenshotEditorViewModel& m_viewModel;
    QString m_field;
    QPointer<QQuickItem> m_opener;
    bool m_isWriting = false;
    double m_hue = 0;
    double m_saturation = 0;
    double m_brightness = 1;
};

} // namespace framora
