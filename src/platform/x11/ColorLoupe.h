#pragma once

#include <QImage>
#include <QRasterWindow>

namespace framora {

/// A card beside the pointer that shows the pixels around it, many times larger, and the name of the middle
/// one's colour. It takes neither pointer nor keys.
class ColorLoupe final : public QRasterWindow {
public:
    /// Pixels to every side of the middle one.
    static constexpr int reach = 7;
    static constexpr int pixelsAcross = 2 * reach + 1;
    static constexpr QSize cardSize{136, 164}; ///< Points.

    /// Where nothing composites, the card is cut out of the screen instead of being blended with it.
    explicit ColorLoupe(bool isComposited);

    /// `pixels` are pixelsAcross to each side; `pointer` and `screen` are in Qt's points.
    void show(const QImage& pixels, QPointF pointer, const QRectF& screen);

    /// What the card looks like, at a ratio of device pixels to points.
    static QImage card(const QImage& pixels, double ratio);
    /// Beside the pointer, and on the other side of it where the screen ends.
    static QPointF placeBeside(QPointF pointer, const QRectF& screen);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_pixels;
};

} // namespace framora
