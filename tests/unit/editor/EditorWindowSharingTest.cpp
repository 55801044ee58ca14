#include "unit/editor/EditorWindowFixture.h"

#include <QColorSpace>
#include <QFileInfo>

namespace framora {
namespace {

class SharingEditor : public EditorWindow {
public:
    QQuickItem* item(const char* name) {
        return window().rootObject()->findChild<QQuickItem*>(QLatin1String(name));
    }
};

TEST_F(SharingEditor, IsDisabledUntilTheDesktopHasAnswered) {
    editor.open(picture(60, 40));
    ASSERT_TRUE(item("share"));
    EXPECT_FALSE(item("share")->isEnabled());
    queue.runPending();
    EXPECT_TRUE(item("share")->isEnabled());
    EXPECT_TRUE(session().canOpenWith());
    EXPECT_TRUE(session().canMail());
}

TEST_F(SharingEditor, StaysDisabledWhereNothingCanBeShared) {
    sharing.abilities = {};
    editor.open(picture(60, 40));
    queue.runPending();
    EXPECT_FALSE(item("share")->isEnabled());
    editor.close();
    auto withoutAny = services();
    withoutAny.sharing = nullptr;
    ScreenshotEditorWindow other(withoutAny);
    other.open(picture(60, 40));
    queue.runPending();
    EXPECT_FALSE(other.session()->canOpenWith());
    other.session()->openWith();
    queue.runPending();
    EXPECT_EQ(frontToast(), QStringLiteral("Sharing failed|xmark.circle.fill|0"));
}

TEST_F(SharingEditor, OneWayAloneIsEnough) {
    sharing.abilities = {false, true};
    editor.open(picture(60, 40));
    queue.runPending();
    EXPECT_TRUE(item("share")->isEnabled());
    EXPECT_FALSE(session().canOpenWith());
}

TEST_F(SharingEditor, GivesTheRenderedPictureTitledScreenshotToTheChosenProgram) {
    editor.open(picture(60, 40));
    session().openWith();
    EXPECT_TRUE(sharing.calls.isEmpty()) << "not out of a menu's own handler";
    queue.runPending();
    ASSERT_EQ(sharing.calls, QStringList{QStringLiteral("open")});
    EXPECT_EQ(QFileInfo(sharing.paths[0]).fileName(), QStringLiteral("Screenshot.png"));
    QImage given = sharing.pictures[0].convertToFormat(QImage::Format_ARGB32);
    QImage expected = session().viewModel()->renderFinalImage().convertToFormat(QImage::Format_ARGB32);
    given.setColorSpace({});
    expected.setColorSpace({});
    EXPECT_EQ(given, expected);
    EXPECT_EQ(sharing.parentWindow, &window());
    EXPECT_EQ(toastPanels.front(), nullptr);
    EXPECT_NE(editor.editorWindow(), nullptr) << "the editor stays";
}

TEST_F(SharingEditor, WritesAMailTitledScreenshot) {
    editor.open(picture(60, 40));
    session().sendByMail();
    queue.runPending();
    ASSERT_EQ(sharing.calls, QStringList{QStringLiteral("mail Screenshot")});
    EXPECT_EQ(sharing.pictures[0].size(), QSize(440, 400));
}

TEST_F(SharingEditor, SaysWhenTheDesktopRefuses) {
    sharing.outcome = Sharing::Outcome::failed;
    editor.open(picture(60, 40));
    session().sendByMail();
    queue.runPending();
    EXPECT_EQ(frontToast(), QStringLiteral("Sharing failed|xmark.circle.fill|0"));
    EXPECT_FALSE(QFileInfo::exists(sharing.paths[0]));
}

TEST_F(SharingEditor, ForgetsSilentlyWhatItsUserGivesNobody) {
    sharing.outcome = Sharing::Outcome::cancelled;
    editor.open(picture(60, 40));
    session().openWith();
    queue.runPending();
    ASSERT_EQ(sharing.pictures.size(), 1);
    EXPECT_FALSE(sharing.pictures[0].isNull());
    EXPECT_EQ(frontToast(), QString());
    EXPECT_FALSE(QFileInfo::exists(sharing.paths[0]));
}

TEST_F(SharingEditor, SharesNothingWhenThereIsNothingToDraw) {
    editor.open(picture(60, 40));
    change(*session().viewModel(), [](auto& config) { config.scale = 0; });
    session().openWith();
    queue.runPending();
    EXPECT_TRUE(sharing.calls.isEmpty());
}

TEST_F(SharingEditor, ThePictureOutlivesTheEditorThatGaveIt) {
    editor.open(picture(60, 40));
    session().openWith();
    queue.runPending();
    editor.close();
    serveDeletions();
    EXPECT_TRUE(QFileInfo::exists(sharing.paths[0]));
    queue.advance(3601);
    EXPECT_FALSE(QFileInfo::exists(sharing.paths[0]));
}

TEST_F(SharingEditor, AnAnswerThatComesTooLateIsIgnored) {
    editor.open(picture(60, 40));
    editor.close();
    serveDeletions();
    queue.runPending();
    EXPECT_EQ(editor.session(), nullptr);
}

} // namespace
} // namespace framora
