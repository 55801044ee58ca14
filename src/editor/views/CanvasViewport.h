#pragma once

#include <QPointF>
#include <QSizeF>

namespace framora {

/// Where the canvas stands in the room of the preview, and how large. Lengths and positions are points of the
/// room, whose origin is its top left corner.
class CanvasViewport {
public:
    /// How much ground may show beside a canvas that is larger than the room and was moved to its end.
    static constexpr double margin = 24.0;

    void setRoom(QSizeF size);
    /// The canvas at a zoom factor of 1.
    void setCanvas(QSizeF size);
    /// About the room's middle. Along an axis in which the canvas fits, it comes to stand in the middle.
    /// Factors that are not positive change nothing.
    void setZoom(double factor);
    /// What of the canvas is at `position` stays there, as long as the room's middle still shows canvas.
    void zoomAbout(QPointF position, double factor);
    /// Moves the canvas as far as there is something to see there: nothing of what fits, unless it stands
    /// beside the middle and comes back.
    void panBy(QPointF distance);
    void centre();

    bool canPan() const;
    double zoom() const { return m_zoom; }
    QPointF canvasCentre() const;
    /// The canvas at the zoom in force.
    QSizeF content() const { return m_canvas * m_zoom; }
    /// In canvas points about the canvas centre.
    QPointF toCanvas(QPointF position) const { return (position - canvasCentre()) / m_zoom; }

private:
    void keepMiddleCovered();

    QSizeF m_room{0, 0};
    QSizeF m_canvas{0, 0};
    double m_zoom = 1.0;
    QPointF m_pan; ///< Of the canvas centre from the room's middle.
};

} // namespace framora
