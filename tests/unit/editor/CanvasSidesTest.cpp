#include "unit/editor/PreviewCanvasFixture.h"

namespace framora {
namespace {

/// What the canvas's sides look like, at the process's scale factor.
class CanvasSides : public Canvas {
protected:
    CanvasSides() { window.setColor(QColor(232, 233, 237)); }

    void setDark() {
        window.setColor(QColor(30, 31, 34));
        canvas->setDark(true);
    }

    /// The greys across the middle of each side from outside in, half of them outside of the canvas.
    std::array<std::vector<int>, 4> sides() {
        const QImage grabbed = window.grabWindow();
        const double ratio = window.effectiveDevicePixelRatio();
        const QSizeF half = canvas->viewport().content() * ratio / 2;
        const QPointF middle = QPointF(canvas->width(), canvas->height()) * ratio / 2;
        const auto across = [&](double x, double y, QPoint inward) {
            constexpr int reach = 6;
            const QPoint edge(int(std::floor(x)), int(std::floor(y)));
            std::vector<int> greys;
            for (int i = -reach; i < reach; ++i)
                greys.push_back(qGray(grabbed.pixel(edge + inward * i)));
            return greys;
        };
        return {across(middle.x() - half.width(), middle.y(), {1, 0}),
                across(middle.x() + half.width(), middle.y(), {-1, 0}),
                across(middle.x(), middle.y() - half.height(), {0, 1}),
                across(middle.x(), middle.y() + half.height(), {0, -1})};
    }

    /// The sides where a line is lighter than both of its neighbours, and than `most`.
    QString paleSides(int most = 0) {
        QString found;
        for (const std::vector<int>& greys : sides())
            for (std::size_t i = 1; i + 1 < greys.size(); ++i)
                if (greys[i] > std::max({greys[i - 1], greys[i + 1], most})) {
                    for (const int grey : greys)
                        found += QString::number(grey) + u' ';
                    found += u'\n';
                    break;
                }
        return found;
    }

    /// Looks at `check` where the canvas ends anywhere within pixels.
    void atManyPlaces(const auto& check) {
        for (const QSize size : {QSize(200, 140), QSize(151, 103)}) {
            QImage picture(size, QImage::Format_RGB32);
            picture.fill(QColor(43, 43, 48));
            canvas->setImage(picture);
            for (int step = 0; step < 40; ++step) {
                set([&](auto& style) { style.zoom = 31 + 2.7 * step; });
                const QString found = check();
                EXPECT_TRUE(found.isEmpty()) << config.zoom << " % of " << size.width() << ":\n"
                                             << found.toStdString();
            }
        }
    }
};

TEST_F(CanvasSides, HaveNoPaleLineBesideADarkBackground) {
    set([](auto& style) {
        style.customColor = {0.17, 0.17, 0.19, 1};
        style.padding = 30;
    });
    atManyPlaces([&] { return paleSides(); });
}

TEST_F(CanvasSides, HaveNoPaleLineBesideALightBackground) {
    set([](auto& style) {
        style.customColor = {0.83, 0.83, 0.83, 1};
        style.padding = 30;
    });
    atManyPlaces([&] { return paleSides(); });
}

TEST_F(CanvasSides, HaveNoPaleLineBesideAScreenshotThatFillsTheCanvas) {
    set([](auto& style) {
        style.backgroundType = BackgroundType::transparent;
        style.padding = 0;
        style.borderRadius = 30;
    });
    atManyPlaces([&] { return paleSides(); });
}

TEST_F(CanvasSides, HaveNoPaleLineBesideATiltedScreenshotThatReachesOut) {
    set([](auto& style) {
        style.customColor = {0.17, 0.17, 0.19, 1};
        style.padding = 20;
        style.borderRadius = 12;
        style.rotation = 20;
        style.rotationY = 15;
        style.screenshotOffset = {-60, 40};
    });
    atManyPlaces([&] { return paleSides(); });
}

TEST_F(CanvasSides, AreNoLighterThanTheirHairlineOnADarkGround) {
    setDark();
    set([](auto& style) {
        style.customColor = {0.03, 0.03, 0.03, 1};
        style.padding = 30;
    });
    const auto lightest = [&] {
        const auto all = sides();
        int most = 0;
        for (const std::vector<int>& greys : all)
            most = std::max(most, std::ranges::max(greys));
        return most;
    };
    const int hairline = lightest(); // on pixels, at 100 %
    EXPECT_GT(hairline, qGray(window.color().rgb()));
    atManyPlaces([&] { return paleSides(hairline); });
}

TEST_F(CanvasSides, HaveTheirHairlineBesideWhiteWhereverTheyEnd) {
    set([](auto& style) {
        style.customColor = {1, 1, 1, 1};
        style.padding = 30;
    });
    // The shadow alone falls off by two at most.
    atManyPlaces([&] {
        QString missing;
        for (const std::vector<int>& greys : sides())
            if (std::ranges::adjacent_find(greys, [](int out, int in) { return out - in > 6; }) ==
                greys.end())
                for (const int grey : greys)
                    missing += QString::number(grey) + u' ';
        return missing;
    });
}

} // namespace
} // namespace framora
