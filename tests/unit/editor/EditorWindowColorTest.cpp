#include "unit/editor/EditorWindowFixture.h"

#include "editor/model/ScreenshotEditorViewModel.h"
#include "platform/Localized.h"

#include <QTest>

namespace framora {
namespace {

class ColorEditor : public EditorWindow {
public:
    ColorPanelBridge& panel() { return *session().colorPanel(); }
    static QQuickItem* find(QQuickItem* parent, const QString& name) {
        for (QQuickItem* child : parent->childItems()) {
            if (child->objectName() == name && child->isVisible())
                return child;
            if (QQuickItem* found = find(child, name))
                return found;
        }
        return nullptr;
    }
    QQuickItem* item(const char* name) { return find(window().contentItem(), QLatin1String(name)); }
    void click(const char* name) {
        QQuickItem* found = item(name);
        ASSERT_TRUE(found) << name;
        QTest::mouseClick(&window(), Qt::LeftButton, {},
                          found->mapToScene({found->width() / 2, found->height() / 2}).toPoint());
    }
    void openPanel() {
        editor.open(picture(60, 40));
        queue.runPending();
        panel().open(QStringLiteral("borderColor"));
        QTest::qWait(1);
    }
};

TEST_F(ColorEditor, TheEyedropperTakesAPixelOfTheScreen) {
    openPanel();
    click("colorPanel.eyedropper.button");
    ASSERT_TRUE(colorPicker.isPicking());
    EXPECT_EQ(colorPicker.parentWindow, &window());
    colorPicker.point(QColor(9, 8, 7));
    EXPECT_EQ(session().viewModel()->borderColor(), QColor(9, 8, 7));
    EXPECT_EQ(defaults.values["RecentColors"], "[\"#090807\"]");
}

TEST_F(ColorEditor, TheEyedropperIsDisabledWhereTheDesktopHasNone) {
    colorPicker.available = false;
    openPanel();
    ASSERT_TRUE(item("colorPanel.eyedropper.button"));
    EXPECT_FALSE(item("colorPanel.eyedropper.button")->isEnabled());
    panel().pickFromScreen();
    EXPECT_EQ(colorPicker.picks, 0);
}

TEST_F(ColorEditor, SaysThatTheScreenWasRefused) {
    openPanel();
    click("colorPanel.eyedropper.button");
    const QColor before = session().viewModel()->borderColor();
    colorPicker.fail();
    ASSERT_TRUE(toastPanels.front());
    const ToastSummary toast = toastPanels.front()->content->summary();
    EXPECT_EQ(toast.message, localized(QStringLiteral("eyedropper.failed")));
    EXPECT_FALSE(toast.success);
    EXPECT_FALSE(panel().isPickingFromScreen());
    EXPECT_EQ(session().viewModel()->borderColor(), before);
    click("colorPanel.eyedropper.button");
    EXPECT_TRUE(colorPicker.isPicking()) << "it can be tried again";
}

TEST_F(ColorEditor, AnEndingEditorEndsThePicking) {
    openPanel();
    click("colorPanel.eyedropper.button");
    editor.close();
    EXPECT_EQ(colorPicker.cancellations, 1);
    serveDeletions();
}

TEST_F(ColorEditor, RecentColoursShowOnceThereAreAny) {
    openPanel();
    EXPECT_EQ(item("colorPanel.recent.0"), nullptr);
    click("colorPanel.swatch.4");
    editor.close();
    serveDeletions();
    openPanel();
    ASSERT_TRUE(item("colorPanel.recent.0"));
    click("colorPanel.recent.0");
    EXPECT_EQ(session().viewModel()->borderColor(), QColor(0xe5484d));
}

} // namespace
} // namespace framora
