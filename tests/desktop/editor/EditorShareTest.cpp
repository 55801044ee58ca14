#include "desktop/editor/EditorDesktop.h"
#include "desktop/editor/PortalDouble.h"

#include <QFileInfo>

namespace framora {
namespace {

class EditorSharing : public EditorDesktop {
protected:
    void startPortal(PortalDouble::Interfaces interfaces = {}) {
        portal = std::make_unique<PortalDouble>(desktop.busAddress(), interfaces);
    }
    const PortalDouble::Call* waitForCall(std::size_t count) {
        return VirtualDesktop::waitFor([&] { return portal->calls.size() == count; }) ? &portal->calls.back()
                                                                                      : nullptr;
    }
    void expectTheScreenshot(const PortalDouble::Call& call) {
        EXPECT_EQ(QFileInfo(call.path).fileName(), QStringLiteral("Screenshot.png"));
        EXPECT_TRUE(call.path.startsWith(desktop.runtimePath() + u'/')) << call.path.toStdString();
        EXPECT_EQ(call.folderMode, 0700U);
        EXPECT_EQ(pixels(QImage::fromData(call.bytes)), finalPicture());
        EXPECT_EQ(call.parentWindow, QStringLiteral("x11:%1").arg(window()->id, 0, 16));
    }
    /// By a click on the item and one in its menu.
    void choose(const QString& entry) {
        click("share");
        letPass();
        click(entry);
    }

    std::unique_ptr<PortalDouble> portal;
};

TEST_F(EditorSharing, ItsMenuOpensThePictureWithAProgramOrWritesAMail) {
    startPortal();
    open();
    choose(QStringLiteral("share.openWith"));
    const PortalDouble::Call* call = waitForCall(1);
    ASSERT_TRUE(call);
    EXPECT_EQ(call->method, QStringLiteral("OpenFile"));
    EXPECT_EQ(call->options.value(QStringLiteral("ask")), true);
    expectTheScreenshot(*call);

    display().key({"Control_L", "minus"}); // The zoom is no part of the picture.
    choose(QStringLiteral("share.mail"));
    call = waitForCall(2);
    ASSERT_TRUE(call);
    EXPECT_EQ(call->method, QStringLiteral("ComposeEmail"));
    EXPECT_EQ(call->options.value(QStringLiteral("subject")), QStringLiteral("Screenshot"));
    expectTheScreenshot(*call);
    EXPECT_NE(portal->calls[0].path, call->path);
    EXPECT_TRUE(QFileInfo::exists(portal->calls[0].path)) << "somebody may still be reading it";
}

TEST_F(EditorSharing, TheKeyboardReachesItsMenu) {
    startPortal();
    open();
    tabTo(QStringLiteral("share"));
    display().key({"space"});
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return ask(QStringLiteral("where share.mail"), QStringLiteral("at ")) != u"nowhere"; }));
    letPass();
    display().key({"Down"});
    display().key({"Return"});
    const PortalDouble::Call* call = waitForCall(1);
    ASSERT_TRUE(call);
    EXPECT_EQ(call->method, QStringLiteral("ComposeEmail"));
}

TEST_F(EditorSharing, EscapeClosesItsMenuAndNotTheEditor) {
    startPortal();
    open();
    const auto menuIsOpen = [&] {
        return ask(QStringLiteral("where share.mail"), QStringLiteral("at ")) != u"nowhere";
    };
    click("share");
    ASSERT_TRUE(VirtualDesktop::waitFor(menuIsOpen));
    letPass();
    display().key({"Escape"});
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !menuIsOpen(); }));
    EXPECT_TRUE(window());
    display().key({"Escape"});
    EXPECT_TRUE(waitForNoWindow());
}

TEST_F(EditorSharing, EscapeClosesTheEditorAlsoWhileAHelpTextShows) {
    startPortal();
    open();
    display().moveTo(place(QStringLiteral("zoom.in")).center() - QPoint(6, 0));
    display().moveTo(place(QStringLiteral("zoom.in")).center());
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return ask(QStringLiteral("where help"), QStringLiteral("at ")) != u"nowhere"; }));
    display().key({"Escape"});
    display().key({"Escape"});
    EXPECT_TRUE(waitForNoWindow());
}

TEST_F(EditorSharing, WhereThePortalCannotTheItemSaysWhyAndDoesNothing) {
    startPortal({false, false});
    open();
    display().moveTo(place(QStringLiteral("share")).center() - QPoint(6, 6));
    display().moveTo(place(QStringLiteral("share")).center());
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return ask(QStringLiteral("where help"), QStringLiteral("at ")) != u"nowhere"; }));
    click("share");
    letPass();
    EXPECT_EQ(ask(QStringLiteral("where share.openWith"), QStringLiteral("at ")), QStringLiteral("nowhere"));
    EXPECT_TRUE(portal->calls.empty());
}

TEST_F(EditorSharing, ARefusalIsSaid) {
    startPortal();
    portal->refuses = true;
    open();
    choose(QStringLiteral("share.openWith"));
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().windowTitled(QStringLiteral("Framora toast")).has_value(); }));
}

TEST_F(EditorSharing, ACancelledChoiceLeavesNothingBehind) {
    startPortal();
    portal->response = 1;
    open();
    choose(QStringLiteral("share.openWith"));
    const PortalDouble::Call* call = waitForCall(1);
    ASSERT_TRUE(call);
    EXPECT_FALSE(call->bytes.isEmpty());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !QFileInfo::exists(call->path); }));
    EXPECT_FALSE(display().windowTitled(QStringLiteral("Framora toast")));
}

} // namespace
} // namespace framora
