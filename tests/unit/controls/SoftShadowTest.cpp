#include "controls/Controls.h"

#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

TEST(SoftShadow, FadesWithoutAStepFromASideIntoACorner) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickView window;
    registerControls(*window.engine());
    QQmlComponent component(window.engine());
    component.setData("import QtQuick\nimport Framora.Controls\n"
                      "Item { width: 200; height: 160\n"
                      "  Item { x: 40; y: 30; width: 120; height: 90; SoftShadow { radius: 12 } } }",
                      {});
    auto* root = component.create();
    ASSERT_TRUE(root) << component.errorString().toStdString();
    window.setContent({}, &component, root);
    window.setColor(Qt::white);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const QImage shown = window.grabWindow();

    const auto shade = [&](int x, int y) { return 255 - shown.pixelColor(x, y).red(); };
    EXPECT_GT(shade(38, 80), 20) << "there is a shadow beside the panel";
    EXPECT_EQ(shade(3, 80), 0) << "and an end of it";
    // Down along each side, from its middle past the corner: it fades a little at a time, and never grows.
    constexpr int step = 7;
    for (const int x : {28, 32, 36, 39})
        for (int y = 75; y < 150; ++y) {
            ASSERT_LE(shade(x, y + 1), shade(x, y) + 1) << x << ',' << y;
            ASSERT_GE(shade(x, y + 1), shade(x, y) - step) << x << ',' << y;
        }
}

} // namespace
} // namespace framora
