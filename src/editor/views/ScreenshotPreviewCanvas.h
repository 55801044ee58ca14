#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/CompositionRasterizer.h"
#include "editor/render/LivePicture.h"
#include "editor/views/CanvasViewport.h"

#include <QImage>
#include <QPointF>
#include <QQuickItem>
#include <QSizeF>
#include <QtQml/qqmlregistration.h>
#include <optional>
#include <stop_token>
#include <utility>

namespace framora {

/// The live preview: the composition at the style's zoom and the hands that are laid on it. A drag moves the
/// screenshot across the canvas, the wheel and two fingers zoom about the pointer, the middle button or the
/// pan key moves the canvas under the view, arrow keys move the screenshot.
class ScreenshotPreviewCanvas : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    Q_PROPERTY(framora::ScreenshotStyleConfig config READ config WRITE setConfig NOTIFY configChanged)
    Q_PROPERTY(bool isDragging READ isDragging NOTIFY isDraggingChanged)
    Q_PROPERTY(QSizeF dragOffset READ dragOffset NOTIFY dragOffsetChanged)
    /// While it is true, a drag with the left button pans.
    Q_PROPERTY(bool panKeyHeld READ panKeyHeld WRITE setPanKeyHeld NOTIFY panKeyHeldChanged)
    /// Whether the ground around the canvas is a dark one.
    Q_PROPERTY(bool dark READ isDark WRITE setDark NOTIFY darkChanged)
    /// It has the keys, and they were brought here by the keyboard.
    Q_PROPERTY(bool visualFocus READ visualFocus NOTIFY visualFocusChanged)

public:
    explicit ScreenshotPreviewCanvas(QQuickItem* parent = nullptr);
    ~ScreenshotPreviewCanvas() override;

    QImage image() const { return m_image; }
    void setImage(const QImage& image);
    const ScreenshotStyleConfig& config() const { return m_config; }
    void setConfig(const ScreenshotStyleConfig& config);
    bool isDragging() const { return m_isDragging; }
    /// How far the running drag has moved the screenshot, in canvas points; zero between drags.
    QSizeF dragOffset() const { return m_dragOffset; }
    bool panKeyHeld() const { return m_panKeyHeld; }
    void setPanKeyHeld(bool held);
    bool visualFocus() const { return m_visualFocus; }
    bool isDark() const { return m_isDark; }
    void setDark(bool dark);
    /// The decoded background; null while there is none.
    QImage loadedBackgroundImage() const { return m_loadedBackgroundImage; }
    /// The drawn frame, in device pixels.
    QImage frame() const { return m_frame.view().copy(); }
    const CanvasViewport& viewport() const { return m_viewport; }

    /// Puts the canvas into the middle of the view.
    Q_INVOKABLE void centre();
    /// Ends a drag with the screenshot where it was before, and a pan where it is. False when there is none.
    Q_INVOKABLE bool cancelDrag();

Q_SIGNALS:
    void imageChanged();
    void configChanged();
    void isDraggingChanged();
    void dragOffsetChanged();
    void panKeyHeldChanged();
    void visualFocusChanged();
    void darkChanged();
    /// Once at the end of each drag: where the screenshot stands now, in canvas points.
    void screenshotOffsetChanged(QSizeF offset);
    /// The user asks for another zoom, in percent and without limits; the style answers with its own.
    void zoomRequested(double percent);
    /// The user moves the screenshot by keys, in canvas points.
    void nudged(QSizeF distance);
    void backgroundLoaded();

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent* event) override;
    void touchUngrabEvent() override;
    void wheelEvent(QWheelEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    /// Two fingers on the canvas.
    struct Pinch {
        QPointF middle;
        double distance = 0;
    };

    bool isOverScreenshot(QPointF position) const;
    void setDragOffset(QSizeF offset);
    void setDragging(bool dragging);
    void setVisualFocus(bool shown);
    /// False, and nothing begun, beside the screenshot.
    bool beginDrag(QPointF position);
    void dragTo(QPointF position);
    void endDrag(bool commit);
    void beginPan(QPointF position);
    void endPan();
    void panBy(QPointF distance);
    void zoomAbout(QPointF position, double factor);
    void pinch(const Pinch& now);
    void updateCursor();
    void loadBackground();
    void drawFrame();
    /// Where the canvas's middle lies, in device pixels of the view.
    QPointF centrePixel() const;
    /// Where the canvas lies, in device pixels of the view.
    QRectF canvasPlace() const;
    /// The pixels that it covers wholly and nothing shines through, in the frame.
    QRect opaquePixels() const;

    QImage m_image;
    ScreenshotStyleConfig m_config;
    CanvasViewport m_viewport;
    bool m_isDragging = false;
    QSizeF m_dragOffset{0, 0};
    QPointF m_pressPoint;                    ///< Of the drag, in canvas points.
    Qt::MouseButton m_button = Qt::NoButton; ///< That began what is going on.
    std::optional<QPointF> m_panPosition;    ///< Of the pointer, while it pans.
    std::optional<Pinch> m_pinch;
    QPointF m_pointer; ///< Where it was seen last.
    bool m_panKeyHeld = false;
    bool m_visualFocus = false;
    bool m_isDark = false;
    std::optional<QPointF> m_zoomAnchor; ///< While a zoom about a place is being asked for.
    QImage m_loadedBackgroundImage;
    std::optional<QUrl> m_backgroundURL;
    bool m_watchesBackground = false;
    std::stop_source m_backgroundLoading; ///< Of the latest decoding.
    CompositionRasterizer m_rasterizer;
    LivePicture m_frame;
};

} // namespace framora
