#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "golden/SmoothPicture.h"

#include <QSize>
#include <optional>
#include <vector>

namespace framora::golden {

/// The composition once more, as its rules read: every point of the plane is asked what lies there, in
/// doubles, and a pixel is the mean of many of its points. Slow, and written without a look at the fast one,
/// on purpose.
class ReferenceComposition {
public:
    ReferenceComposition(ScreenshotStyleConfig style, SmoothPicture screenshot,
                         std::optional<SmoothPicture> background);

    /// Pixels of a picture: rows from the top, colours 0...255 and premultiplied.
    struct Picture {
        QSize size;
        std::vector<Sample> pixels;
    };

    /// The frame of an export at so many pixels a point.
    Picture frame(double pixelsPerPoint) const;

private:
    struct Hit {
        Sample color;
        unsigned layers = 0; ///< one bit for each outline that holds the point, and one for a scene's stripes
        std::optional<Sample> sceneAbove; ///< of a scene in overlay mode, with its opacity
    };

    Hit at(double x, double y) const;
    bool isOnCanvas(double x, double y) const;
    void addScene(Hit& hit, double x, double y) const;
    void addScreenshot(Hit& hit, double x, double y) const;
    Sample background(double x, double y) const;
    void blurBackground(double deviation);
    Sample blurredBackground(double x, double y) const;
    std::optional<std::pair<double, double>> toScreenshot(double x, double y) const;

    ScreenshotStyleConfig m_style;
    SmoothPicture m_screenshot;
    std::optional<SmoothPicture> m_background;
    double m_canvasWidth;
    double m_canvasHeight;
    double m_mockupPadding;
    double m_factor; ///< of the screenshot, `scale` included

    /// The blurred background at points `step` apart, from the canvas's top left corner.
    struct Lattice {
        double step = 0.0;
        int width = 0;
        int height = 0;
        std::vector<Sample> samples;
    };
    Lattice m_blurred; ///< empty where nothing is blurred
};

} // namespace framora::golden
