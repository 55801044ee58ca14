#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/CompositionRasterizer.h"

#include <QImage>
#include <QPointF>
#include <QQuickItem>
#include <QSizeF>
#include <QtQml/qqmlregistration.h>
#include <array>
#include <optional>

namespace framora {

/// The live preview: the composition at the style's zoom, centred in the item, and the drag that moves the
/// screenshot across it. What is larger than the item can be scrolled with the wheel.
class ScreenshotPreviewCanvas : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    Q_PROPERTY(framora::ScreenshotStyleConfig config READ config WRITE setConfig NOTIFY configChanged)
    Q_PROPERTY(bool isDragging READ isDragging NOTIFY isDraggingChanged)
    Q_PROPERTY(QSizeF dragOffset READ dragOffset NOTIFY dragOffsetChanged)

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
    /// The decoded background; null while there is none.
    QImage loadedBackgroundImage() const { return m_loadedBackgroundImage; }
    /// The drawn frame, in device pixels.
    QImage frame() const { return m_frames[m_front]; }

Q_SIGNALS:
    void imageChanged();
    void configChanged();
    void isDraggingChanged();
    void dragOffsetChanged();
    /// Once at the end of each drag: where the screenshot stands now, in canvas points.
    void screenshotOffsetChanged(QSizeF offset);
    void backgroundLoaded();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void wheelEvent(QWheelEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

private:
    double zoomFactor() const { return m_config.zoom / 100.0; }
    /// In points of the item, as positions are.
    QPointF canvasCentre() const;
    bool isOverScreenshot(QPointF position) const;
    void setDragOffset(QSizeF offset);
    void setDragging(bool dragging);
    void endDrag(bool commit);
    void setPan(QPointF pan);
    void loadBackground();
    void drawFrame();

    QImage m_image;
    ScreenshotStyleConfig m_config;
    bool m_isDragging = false;
    QSizeF m_dragOffset{0, 0};
    QPointF m_pressPosition;
    QPointF m_pan; ///< Of the canvas centre from the item's centre, in points.
    QImage m_loadedBackgroundImage;
    std::optional<QUrl> m_backgroundURL;
    bool m_watchesBackground = false;
    CompositionRasterizer m_rasterizer;
    /// Two, so that drawing the next frame does not copy the one that is being shown.
    std::array<QImage, 2> m_frames;
    std::size_t m_front = 0;
};

} // namespace framora
