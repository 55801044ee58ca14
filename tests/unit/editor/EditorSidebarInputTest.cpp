#include "unit/editor/EditorWindowFixture.h"

#include "editor/model/ScreenshotEditorViewModel.h"
#include "platform/Localized.h"
#include "unit/controls/ShownItems.h"

#include <QQmlComponent>
#include <QTest>
#include <memory>

namespace framora {
namespace {

/// The sidebar's controls under keys and pointer, and what undo makes of it.
class EditorSidebarInput : public EditorWindow {
public:
    void openAppearance(QSize size = {200, 100}) {
        editor.open(picture(size.width(), size.height()));
        window().requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        queue.advance(0.2);
        session().setProperty("selectedTab", 0);
        QTest::qWait(50);
    }
    ScreenshotEditorViewModel& model() { return *session().viewModel(); }
    double radius() { return model().config().borderRadius; }
    QQuickItem* item(const char* name) { return itemNamed(window().contentItem(), QLatin1String(name)); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&window(), key, modifiers);
    }
    /// A place on the slider of the corners' radius, from 0 at its left end to 1.
    QPoint onTrack(double part) {
        QQuickItem* slider = item("borderRadius.slider");
        EXPECT_NE(slider, nullptr);
        return slider->mapToScene({part * slider->width(), slider->height() / 2}).toPoint();
    }
    QPoint centreOf(const char* name) {
        QQuickItem* found = item(name);
        EXPECT_NE(found, nullptr) << name;
        return found->mapToScene({found->width() / 2, found->height() / 2}).toPoint();
    }
    QPoint middleOfCanvas() { return centreOf("canvas"); }
    void click(const char* name) { QTest::mouseClick(&window(), Qt::LeftButton, {}, centreOf(name)); }
    /// Another window has the keys for a while.
    void leaveAndComeBack() {
        QWindow other;
        other.show();
        other.requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
        window().requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
    }
    bool helps() { return item("help") && item("help")->isVisible(); }
    /// As a desktop tells of a key that stays down: pairs of a release and a press.
    void holdKey(Qt::Key key, const QString& text, int repeats = 4) {
        pressAndHold(key, text, repeats);
        QTest::keyRelease(&window(), key);
    }
    void pressAndHold(Qt::Key key, const QString& text, int repeats = 4) {
        QTest::keyPress(&window(), key);
        for (int i = 0; i < repeats; ++i)
            for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
                QKeyEvent repeat(type, key, {}, text, true);
                QCoreApplication::sendEvent(&window(), &repeat);
            }
    }
};

TEST_F(EditorSidebarInput, AKeyThatIsHeldPressesAButtonOnce) {
    openAppearance();
    for (const double padding : {10.0, 20.0, 30.0, 40.0, 50.0}) {
        ScreenshotStyleConfig config = model().config();
        config.padding = padding;
        model().setConfig(config);
    }
    item("undo")->forceActiveFocus(Qt::TabFocusReason);
    holdKey(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(model().config().padding, 40);
    holdKey(Qt::Key_Space, QStringLiteral(" "));
    EXPECT_EQ(model().config().padding, 30);
}

TEST_F(EditorSidebarInput, ReturnPressesAButtonWhenItIsLetGo) {
    openAppearance();
    const double before = model().config().padding;
    model().set(QStringLiteral("padding"), before + 10);
    item("undo")->forceActiveFocus(Qt::TabFocusReason);
    pressAndHold(Qt::Key_Return, QStringLiteral("\r"));
    EXPECT_EQ(model().config().padding, before + 10) << "what it opened would get the repeats";
    EXPECT_TRUE(item("undo")->property("down").toBool());
    item("redo")->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyRelease(&window(), Qt::Key_Return);
    EXPECT_EQ(model().config().padding, before + 10) << "it was not pressed where it is let go";
    EXPECT_FALSE(item("undo")->property("down").toBool());
}

TEST_F(EditorSidebarInput, AKeyThatIsHeldChoosesAnExportSizeOnce) {
    openAppearance();
    session().setProperty("selectedTab", 2);
    QTest::qWait(50);
    QQuickItem* row = item("socialPreset.0");
    ASSERT_NE(row, nullptr);
    row->forceActiveFocus(Qt::TabFocusReason);
    for (const auto& [key, text] :
         {std::pair(Qt::Key_Space, QStringLiteral(" ")), std::pair(Qt::Key_Return, QStringLiteral("\r"))}) {
        holdKey(key, text, 4);
        EXPECT_EQ(model().socialPresetIndex(), 0);
        model().undo();
        EXPECT_EQ(model().socialPresetIndex(), -1);
        EXPECT_FALSE(model().canUndo());
    }
}

TEST_F(EditorSidebarInput, ReturnOpensANumberAndTakesItOnce) {
    openAppearance();
    item("borderRadius.slider")->forceActiveFocus(Qt::TabFocusReason);
    holdKey(Qt::Key_Return, QStringLiteral("\r"), 3);
    EXPECT_TRUE(window().activeFocusItem()->inherits("QQuickTextInput"));
    holdKey(Qt::Key_Return, QStringLiteral("\r"), 4);
    EXPECT_FALSE(window().activeFocusItem()->inherits("QQuickTextInput"));
}

TEST_F(EditorSidebarInput, TheUpAndDownKeysStepANumberThatIsBeingTyped) {
    openAppearance();
    item("borderRadius.slider")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Return);
    key(Qt::Key_Up);
    EXPECT_EQ(radius(), 21);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(radius(), 11);
    for (const auto modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
        key(Qt::Key_Up, modifier);
    EXPECT_EQ(radius(), 11);
    key(Qt::Key_5);
    key(Qt::Key_Up);
    EXPECT_EQ(radius(), 6) << "from what was typed";
    EXPECT_EQ(item("borderRadius.field")->property("text").toString(), QStringLiteral("6"));
    key(Qt::Key_Return);
    EXPECT_EQ(radius(), 6);
    EXPECT_EQ(window().activeFocusItem(), item("borderRadius.slider"));
}

TEST_F(EditorSidebarInput, AHeldEscapeEndsOneThing) {
    openAppearance();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    session().colorPanel()->open(QStringLiteral("borderColor"));
    ASSERT_TRUE(session().colorPanel()->isOpen());
    holdKey(Qt::Key_Escape, QString());
    ASSERT_NE(editor.editorWindow(), nullptr);
    EXPECT_FALSE(session().colorPanel()->isOpen());
}

TEST_F(EditorSidebarInput, ARepeatTakenForAPressDoesNothingMore) {
    openAppearance();
    QQmlComponent settling(window().engine());
    settling.setData("import QtQuick\nimport Framora.Controls\n"
                     "QtObject { Component.onCompleted: Theme.keySettling = 60000 }",
                     {});
    const std::unique_ptr<QObject> set(settling.create()); // As where releases come amid the repeats.
    ASSERT_NE(set, nullptr) << settling.errorString().toStdString();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    session().colorPanel()->open(QStringLiteral("borderColor"));
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Escape);
    EXPECT_FALSE(session().colorPanel()->isOpen());
    EXPECT_TRUE(frontToast().isEmpty()) << "the key did one thing";
    leaveAndComeBack();
    for (int i = 0; i < 3; ++i) {
        key(Qt::Key_S, Qt::ControlModifier);
        queue.runPending();
    }
    EXPECT_EQ(panels.saveCount, 1);
    leaveAndComeBack();
    key(Qt::Key_S, Qt::ControlModifier);
    queue.runPending();
    EXPECT_EQ(panels.saveCount, 2) << "it was let go since";
    key(Qt::Key_Escape);
    EXPECT_FALSE(frontToast().isEmpty()) << "another key";
}

TEST_F(EditorSidebarInput, OnlyAPointerThatMovesAsksForHelp) {
    openAppearance();
    const auto helps = [this] { return this->helps(); };
    // The button slides away, and another one comes below the pointer.
    const QPoint place = centreOf("sidebar.toggle");
    QTest::mouseMove(&window(), place + QPoint(0, 200));
    QTest::mouseMove(&window(), place);
    EXPECT_TRUE(QTest::qWaitFor(helps)) << "it came by itself";
    QTest::mouseClick(&window(), Qt::LeftButton, {}, place);
    ASSERT_TRUE(QTest::qWaitFor([&] {
        for (const char* other : {"undo", "redo", "zoom.in", "zoom.out", "reset.disposition", "share"})
            if (item(other)->property("hovered").toBool())
                return true;
        return false;
    }));
    EXPECT_FALSE(QTest::qWaitFor(helps, 900));
    QTest::mouseMove(&window(), place + QPoint(3, 3));
    EXPECT_TRUE(QTest::qWaitFor(helps));
}

TEST_F(EditorSidebarInput, AButtonBelowAPointerAtRestGivesNoHelpAsTheWindowOpens) {
    openAppearance();
    const QPoint place = centreOf("zoom.in");
    QTest::mouseMove(&window(), place);
    ASSERT_TRUE(QTest::qWaitFor([this] { return item("zoom.in")->property("hovered").toBool(); }));
    EXPECT_FALSE(QTest::qWaitFor([this] { return helps(); }, 900));
    QTest::mouseMove(&window(), place + QPoint(3, 3));
    EXPECT_TRUE(QTest::qWaitFor([this] { return helps(); }));
}

TEST_F(EditorSidebarInput, WhatMayBeUnavailableFeelsThePointerAndHelpsWhereItIsAvailable) {
    openAppearance();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    session().colorPanel()->open(QStringLiteral("borderColor"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return item("colorPanel.eyedropper.button"); }));
    queue.runPending();
    for (const char* name : {"share", "colorPanel.eyedropper.button"}) {
        SCOPED_TRACE(name);
        QTest::mouseMove(&window(), middleOfCanvas());
        EXPECT_TRUE(QTest::qWaitFor([this] { return !helps(); }));
        ASSERT_TRUE(item(name)->isEnabled());
        QTest::mouseMove(&window(), centreOf(name));
        EXPECT_TRUE(QTest::qWaitFor([&] { return item(name)->property("hovered").toBool(); }));
        EXPECT_TRUE(QTest::qWaitFor([this] { return helps(); }));
    }
}

TEST_F(EditorSidebarInput, WhatIsUnavailableSaysWhyToThePointer) {
    colorPicker.available = false;
    openAppearance();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    session().colorPanel()->open(QStringLiteral("borderColor"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return item("colorPanel.eyedropper.button"); }));
    ASSERT_FALSE(item("colorPanel.eyedropper.button")->isEnabled());
    QTest::mouseMove(&window(), middleOfCanvas());
    QTest::mouseMove(&window(), centreOf("colorPanel.eyedropper.button"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return helps(); }));
    EXPECT_EQ(shownTexts(*item("help")).join(u' '), localized(QStringLiteral("eyedropper.unavailable")));
}

TEST_F(EditorSidebarInput, EscapeLosesNoEditsAtOnce) {
    openAppearance();
    model().set(QStringLiteral("padding"), 33.0);
    key(Qt::Key_Escape);
    ASSERT_NE(editor.editorWindow(), nullptr);
    EXPECT_EQ(frontToast(),
              QStringLiteral("Press Esc again to discard your edits|exclamationmark.triangle.fill|0"));
    queue.advance(ScreenshotEditorViewModel::secondsToLeave + 0.1);
    key(Qt::Key_Escape);
    ASSERT_NE(editor.editorWindow(), nullptr) << "the first was long ago";
    key(Qt::Key_Escape);
    EXPECT_EQ(editor.editorWindow(), nullptr);
}

TEST_F(EditorSidebarInput, WhatEndsTheWindowWaitsForTheKey) {
    struct Ending {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int copies;
    };
    for (const auto& [pressed, modifiers, copies] : {Ending{Qt::Key_C, Qt::ControlModifier, 1},
                                                     {Qt::Key_Insert, Qt::ControlModifier, 1},
                                                     {Qt::Key_W, Qt::ControlModifier, 0},
                                                     {Qt::Key_Escape, {}, 0}}) {
        SCOPED_TRACE(pressed);
        openAppearance();
        const auto before = pasteboard.written.size();
        QTest::keyPress(&window(), pressed, modifiers);
        queue.advance(0.2);
        ASSERT_NE(editor.editorWindow(), nullptr) << "the repeats would fall on what is beneath";
        QTest::keyRelease(&window(), Qt::Key_Control);
        queue.advance(0.2);
        ASSERT_NE(editor.editorWindow(), nullptr) << "the key itself is still down";
        EXPECT_EQ(pasteboard.written.size(), before);
        QTest::keyRelease(&window(), pressed);
        queue.advance(0.2);
        EXPECT_EQ(editor.editorWindow(), nullptr);
        EXPECT_EQ(pasteboard.written.size(), before + copies);
        serveDeletions();
    }
}

TEST_F(EditorSidebarInput, WhatEndsTheWindowDoesSoAlsoWhereAnotherTakesTheKeyAway) {
    openAppearance();
    QTest::keyPress(&window(), Qt::Key_W, Qt::ControlModifier);
    QWindow other;
    other.show();
    other.requestActivate();
    EXPECT_TRUE(QTest::qWaitFor([this] { return editor.editorWindow() == nullptr; }));
}

TEST_F(EditorSidebarInput, TheShareMenuGivesTheKeysBack) {
    openAppearance();
    queue.runPending();
    item("share")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([this] { return window().activeFocusItem() != item("share"); }));
    key(Qt::Key_Escape);
    ASSERT_NE(editor.editorWindow(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([this] { return window().activeFocusItem() == item("share"); }));
}

TEST_F(EditorSidebarInput, AKeyThatIsHeldOpensTheColorPanelOnce) {
    openAppearance();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    QTest::qWait(50);
    QQuickItem* well = item("borderColor.well");
    ASSERT_NE(well, nullptr);
    // An even number of presses would close it again.
    for (const auto& [key, text] :
         {std::pair(Qt::Key_Return, QStringLiteral("\r")), std::pair(Qt::Key_Space, QStringLiteral(" "))}) {
        session().colorPanel()->close();
        well->forceActiveFocus(Qt::MouseFocusReason);
        holdKey(key, text, 3);
        EXPECT_TRUE(session().colorPanel()->isOpen());
    }
}

TEST_F(EditorSidebarInput, TheZoomShownIsAButtonForTheKeysToo) {
    openAppearance({3000, 2000});
    const double fitted = model().config().zoom;
    ASSERT_NE(fitted, 100);
    item("zoom.text")->forceActiveFocus(Qt::TabFocusReason);
    key(Qt::Key_Return);
    queue.advance(0.2);
    EXPECT_EQ(model().config().zoom, 100);
    // An even number of presses would come back to it.
    holdKey(Qt::Key_Space, QStringLiteral(" "), 3);
    queue.advance(0.2);
    EXPECT_EQ(model().config().zoom, fitted);
}

TEST_F(EditorSidebarInput, AClickedSliderThatGoesAwayLeavesNoEditOpen) {
    openAppearance();
    QTest::mouseClick(&window(), Qt::LeftButton, {}, onTrack(0.8));
    session().setProperty("selectedTab", 1);
    QCoreApplication::processEvents();
    for (const double wanted : {3.0, 4.0}) {
        queue.advance(5);
        model().set(QStringLiteral("borderRadius"), wanted);
    }
    model().undo();
    EXPECT_EQ(radius(), 3);
}

TEST_F(EditorSidebarInput, EscapeTakesBackWhatAHeldSliderHasMoved) {
    openAppearance();
    const double before = radius();
    QTest::mousePress(&window(), Qt::LeftButton, {}, onTrack(0.8));
    ASSERT_NE(radius(), before);
    key(Qt::Key_Escape);
    QCoreApplication::processEvents();
    ASSERT_NE(editor.editorWindow(), nullptr) << "the hold was there to be left first";
    EXPECT_EQ(radius(), before);
    QTest::mouseMove(&window(), onTrack(0.3));
    EXPECT_EQ(radius(), before) << "the pointer has let go";
    QTest::mouseRelease(&window(), Qt::LeftButton, {}, onTrack(0.3));
    EXPECT_FALSE(model().canUndo());
}

TEST_F(EditorSidebarInput, UndoWaitsForTheEndOfAHold) {
    openAppearance();
    const double first = radius();
    model().set(QStringLiteral("padding"), 33.0);
    QTest::mousePress(&window(), Qt::LeftButton, {}, onTrack(0.8));
    const double held = radius();
    ASSERT_NE(held, first);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(radius(), held);
    QTest::mouseRelease(&window(), Qt::LeftButton, {}, onTrack(0.8));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(radius(), first);
    EXPECT_EQ(model().config().padding, 33);
}

TEST_F(EditorSidebarInput, ADoubleClickOnTheTrackIsUndoneInOneStep) {
    openAppearance();
    const double standard = radius();
    ScreenshotStyleConfig config = model().config();
    config.borderRadius = 31;
    model().setConfig(config);
    QTest::mouseClick(&window(), Qt::LeftButton, {}, onTrack(0.2));
    QTest::mouseDClick(&window(), Qt::LeftButton, {}, onTrack(0.2));
    ASSERT_EQ(radius(), standard);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(radius(), 31);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(radius(), standard);
}

TEST_F(EditorSidebarInput, TwoClicksFarApartAreTwoSteps) {
    openAppearance();
    QTest::mouseClick(&window(), Qt::LeftButton, {}, onTrack(0.2));
    const double first = radius();
    QTest::mouseClick(&window(), Qt::LeftButton, {}, onTrack(0.8));
    ASSERT_NE(radius(), first);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(radius(), first);
}

TEST_F(EditorSidebarInput, APressElsewhereTakesWhatWasTypedBeforeItActs) {
    openAppearance();
    model().set(QStringLiteral("padding"), 33.0);
    const double before = radius();
    click("borderRadius.text");
    for (const auto digit : {Qt::Key_3, Qt::Key_5})
        key(digit);
    ASSERT_EQ(radius(), before);
    click("undo");
    EXPECT_FALSE(window().activeFocusItem()->inherits("QQuickTextInput"));
    EXPECT_EQ(radius(), before) << "the typed number is what the click undid";
    EXPECT_EQ(model().config().padding, 33);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(radius(), 35);
}

TEST_F(EditorSidebarInput, APressIntoTheFieldGoesOnTyping) {
    openAppearance();
    click("borderRadius.text");
    ASSERT_TRUE(window().activeFocusItem()->inherits("QQuickTextInput"));
    click("borderRadius.text");
    EXPECT_TRUE(window().activeFocusItem()->inherits("QQuickTextInput"));
}

TEST_F(EditorSidebarInput, TheColorPanelClosesWhenUndoTakesItsColorAway) {
    openAppearance();
    model().set(QStringLiteral("gradientConfig.useThreeColors"), true);
    session().colorPanel()->open(QStringLiteral("gradientConfig.color3"));
    model().undo();
    EXPECT_FALSE(session().colorPanel()->isOpen());
}

TEST_F(EditorSidebarInput, EverySliderShowsItsValueInItsForm) {
    openAppearance();
    model().set(QStringLiteral("mockupStyle"), QStringLiteral("border"));
    struct Shown {
        int tab;
        const char* field;
        const char* text;
        double boxWidth; ///< Wider where there is a unit.
    };
    for (const Shown& shown : {Shown{0, "mockupBorderSize", "3.0", 28}, Shown{0, "borderRadius", "20", 28},
                               Shown{1, "gradientConfig.saturation", "100%", 36},
                               Shown{1, "gradientConfig.brightness", "100%", 36},
                               Shown{2, "padding", "80", 28}, Shown{2, "imageScale", "100%", 36}}) {
        session().setProperty("selectedTab", shown.tab);
        QTest::qWait(20);
        QQuickItem* text = item((std::string(shown.field) + ".text").c_str());
        ASSERT_NE(text, nullptr) << shown.field;
        EXPECT_EQ(text->property("text").toString(), QLatin1String(shown.text)) << shown.field;
        EXPECT_EQ(text->width(), shown.boxWidth) << shown.field;
    }
}

TEST_F(EditorSidebarInput, ARowShowsItsResetWhereItCanResetSomethingAndATiltAlways) {
    openAppearance();
    for (const auto& [tab, field] : {std::pair(0, "borderRadius"), std::pair(0, "rotationX"),
                                     std::pair(0, "rotationY"), std::pair(2, "padding")}) {
        session().setProperty("selectedTab", tab);
        QTest::qWait(20);
        const bool isTilt = std::string_view(field).starts_with("rotation");
        const QQuickItem* reset = item((std::string(field) + ".reset").c_str());
        EXPECT_EQ(reset && reset->isVisible(), isTilt) << field;
        const auto shows = [&, name = std::string(field) + ".reset"] {
            const QQuickItem* shown = item(name.c_str());
            return shown && shown->isVisible() && shown->opacity() == 1;
        };
        model().set(QLatin1String(field), 5.0);
        EXPECT_TRUE(QTest::qWaitFor(shows)) << field;
        model().undo();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !shows(); })) << field;
    }
    // A row that has no say has nothing to reset either.
    model().set(QStringLiteral("backgroundType"), QStringLiteral("gradient"));
    model().set(QStringLiteral("gradientConfig.angle"), 45.0);
    session().setProperty("selectedTab", 1);
    const auto angleResets = [this] {
        const QQuickItem* reset = item("gradientConfig.angle.reset");
        return reset && reset->isVisible();
    };
    EXPECT_TRUE(QTest::qWaitFor(angleResets));
    model().set(QStringLiteral("gradientConfig.style"), QStringLiteral("radial"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !angleResets(); }));
}

TEST_F(EditorSidebarInput, TheHeadersCommandsSayWhatTheyDo) {
    openAppearance();
    EXPECT_EQ(item("zoom.in")->property("help").toString(), QStringLiteral("Zoom In"));
    EXPECT_EQ(item("zoom.out")->property("help").toString(), QStringLiteral("Zoom Out"));
    EXPECT_EQ(item("reset.disposition")->property("help").toString(), QStringLiteral("Reset Disposition"));
    EXPECT_EQ(item("share")->property("text").toString(), QStringLiteral("Share"));
    for (const auto& [name, symbol] : {std::pair{"sidebar.toggle", "sidebar.left"},
                                       {"zoom.in", "plus.magnifyingglass"},
                                       {"zoom.out", "minus.magnifyingglass"},
                                       {"reset.disposition", "arrow.counterclockwise"},
                                       {"share", "square.and.arrow.up"}})
        EXPECT_EQ(item(name)->property("symbol").toString(), QLatin1String(symbol)) << name;
}

TEST_F(EditorSidebarInput, TheTabsAndTheKindsOfBackgroundHaveTheirSymbols) {
    openAppearance();
    EXPECT_EQ(shownTexts(*item("tabs")).join(u' '), QStringLiteral("Appearance Background Layout"));
    EXPECT_EQ(shownSymbols(*item("tabs")).join(u' '), QStringLiteral("paintbrush photo square.on.square"));
    session().setProperty("selectedTab", 1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return item("backgroundType"); }));
    EXPECT_EQ(shownSymbols(*item("backgroundType")).join(u' '),
              QStringLiteral("checkerboard.rectangle drop.fill circle.lefthalf.filled photo"));
}

} // namespace
} // namespace framora
