#include "screencapture/SelectionModel.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

using Key = SelectionModel::Key;
using Button = SelectionModel::Button;
using Outcome = SelectionModel::Outcome;

constexpr int kSpaceCode = 65;
constexpr int kShiftCode = 50;
constexpr int kRightShiftCode = 62;
constexpr int kEscapeCode = 9;

class SelectionModelTest : public testing::Test {
protected:
    void press(int x, int y) { model.buttonPressed(Button::Primary, {x, y}); }
    void move(int x, int y) { model.pointerMoved({x, y}); }
    Outcome release(int x, int y) { return model.buttonReleased(Button::Primary, {x, y}); }

    SelectionModel model{CaptureMode::Area, {{0, 0, 1280, 800}}, {400, 300}};
};

TEST_F(SelectionModelTest, aDragSelectsInEveryDirection) {
    const Rect expected{200, 150, 300, 100};
    const Point corners[][2] = {{{200, 150}, {500, 250}},
                                {{500, 250}, {200, 150}},
                                {{500, 150}, {200, 250}},
                                {{200, 250}, {500, 150}}};
    for (const auto& [from, to] : corners) {
        SelectionModel fresh(CaptureMode::Area, {{0, 0, 1280, 800}}, {0, 0});
        fresh.buttonPressed(Button::Primary, from);
        fresh.pointerMoved({300, 300});
        fresh.pointerMoved(to);
        EXPECT_EQ(fresh.selection(), expected);
        EXPECT_EQ(fresh.activeCorner(), to);
        EXPECT_EQ(fresh.buttonReleased(Button::Primary, to), Outcome::CaptureArea);
        EXPECT_EQ(fresh.selection(), expected);
    }
}

TEST_F(SelectionModelTest, aClickWithoutADragCapturesNothing) {
    press(100, 100);
    EXPECT_EQ(release(100, 100), Outcome::None);
    EXPECT_FALSE(model.dragging());
    press(100, 100);
    move(300, 300);
    move(300, 100);
    EXPECT_TRUE(model.selection().empty()) << "no height";
    EXPECT_EQ(release(300, 100), Outcome::None);
    press(10, 10);
    EXPECT_EQ(release(20, 20), Outcome::CaptureArea) << "the next drag counts";
}

TEST_F(SelectionModelTest, theReleaseCountsEvenWithoutAMotionBeforeIt) {
    press(10, 20);
    EXPECT_EQ(release(110, 220), Outcome::CaptureArea);
    EXPECT_EQ(model.selection(), (Rect{10, 20, 100, 200}));
}

TEST_F(SelectionModelTest, wholeScreensCanBeSelected) {
    press(0, 0);
    move(1279, 799);
    EXPECT_EQ(model.selection(), (Rect{0, 0, 1280, 800}));
    release(1279, 799);
    SelectionModel backwards(CaptureMode::Area, {{0, 0, 1280, 800}}, {0, 0});
    backwards.buttonPressed(Button::Primary, {1279, 799});
    backwards.pointerMoved({0, 0});
    EXPECT_EQ(backwards.selection(), (Rect{0, 0, 1280, 800}));
}

TEST_F(SelectionModelTest, theLastPixelBeforeAnotherMonitorIsAnOrdinaryOne) {
    SelectionModel two(CaptureMode::Area, {{0, 0, 800, 600}, {800, 0, 640, 480}}, {0, 0});
    two.buttonPressed(Button::Primary, {0, 0});
    two.pointerMoved({799, 300});
    EXPECT_EQ(two.selection(), (Rect{0, 0, 799, 300}));
    two.pointerMoved({1439, 479});
    EXPECT_EQ(two.selection(), (Rect{0, 0, 1440, 480})) << "the second monitor ends at 480";
}

TEST_F(SelectionModelTest, staysWithinTheUnionOfTheMonitors) {
    SelectionModel two(CaptureMode::Area, {{0, 200, 800, 600}, {800, 0, 640, 480}}, {0, 300});
    two.buttonPressed(Button::Primary, {100, 300});
    two.pointerMoved({5000, -50});
    EXPECT_EQ(two.selection(), (Rect{100, 0, 1340, 300}));
    two.pointerMoved({-10, 9000});
    EXPECT_EQ(two.selection(), (Rect{0, 300, 100, 500}));
}

TEST_F(SelectionModelTest, spaceMovesTheSelectionWhileDragging) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_TRUE(model.moving());
    move(350, 260);
    EXPECT_EQ(model.selection(), (Rect{150, 160, 200, 100}));
    model.keyPressed(Key::Space, kSpaceCode); // the key repeats
    move(360, 260);
    EXPECT_EQ(model.selection(), (Rect{160, 160, 200, 100}));
    model.keyReleased(Key::Space, kSpaceCode);
    move(400, 300);
    EXPECT_EQ(model.selection(), (Rect{160, 160, 240, 140})) << "the far corner stays where it was moved to";
    EXPECT_EQ(release(400, 300), Outcome::CaptureArea);
    EXPECT_EQ(model.mode(), CaptureMode::Area);
}

TEST_F(SelectionModelTest, aMovedSelectionStopsAtTheScreenEdge) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    move(0, 0);
    EXPECT_EQ(model.selection(), (Rect{0, 0, 200, 100}));
    move(1279, 799);
    EXPECT_EQ(model.selection(), (Rect{1080, 700, 200, 100}));
}

TEST_F(SelectionModelTest, whatWasMovedAgainstAnEdgeIsTakenAsItIsShown) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    move(120, 40); // 80 further than the edges let it go
    model.keyReleased(Key::Space, kSpaceCode);
    const Rect shown{0, 0, 200, 100};
    EXPECT_EQ(model.selection(), shown);
    move(125, 42);
    EXPECT_EQ(model.selection(), (Rect{0, 0, 205, 102})) << "it grows from there, without a jump";
    move(120, 40);
    EXPECT_EQ(release(120, 40), Outcome::CaptureArea);
    EXPECT_EQ(model.selection(), shown);
}

TEST_F(SelectionModelTest, aGripOfAnEarlierDragIsForgotten) {
    press(100, 100);
    move(300, 100); // no height yet
    model.keyPressed(Key::Space, kSpaceCode);
    move(100, 50);
    model.keyReleased(Key::Space, kSpaceCode);
    EXPECT_EQ(release(100, 50), Outcome::None);
    press(400, 400);
    EXPECT_EQ(release(500, 450), Outcome::CaptureArea);
    EXPECT_EQ(model.selection(), (Rect{400, 400, 100, 50}));
}

TEST_F(SelectionModelTest, aSelectionReleasedWhileSpaceIsDownIsTaken) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(release(310, 210), Outcome::CaptureArea);
    EXPECT_EQ(model.selection(), (Rect{110, 110, 200, 100}));
}

TEST_F(SelectionModelTest, shiftKeepsTheAxisThatMovesFirst) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Shift, kShiftCode);
    move(302, 201);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 200, 100})) << "too little to tell";
    move(400, 210);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 100}));
    move(400, 600);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 100})) << "the axis is kept";
    model.keyReleased(Key::Shift, kShiftCode);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 500})) << "free again, at the pointer";
    model.keyPressed(Key::Shift, kShiftCode);
    move(410, 650);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 550})) << "the other axis this time";
}

TEST_F(SelectionModelTest, shiftAlsoConstrainsAMove) {
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    model.keyPressed(Key::Shift, kShiftCode);
    move(360, 220);
    EXPECT_EQ(model.selection(), (Rect{160, 100, 200, 100}));
}

TEST_F(SelectionModelTest, shiftHeldSinceTheShortcutConstrainsOnlyWhenPressedAnew) {
    model.keyHeldAtStart(kShiftCode);
    press(100, 100);
    model.keyPressed(Key::Shift, kShiftCode); // a repeat of the held key
    move(300, 200);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 200, 100}));
    model.keyReleased(Key::Shift, kShiftCode);
    model.keyPressed(Key::Shift, kShiftCode);
    move(300, 400);
    move(500, 400);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 200, 300}));
}

TEST_F(SelectionModelTest, theOtherShiftWorksWhileOneIsHeldSinceTheShortcut) {
    model.keyHeldAtStart(kShiftCode);
    press(100, 100);
    move(300, 200);
    model.keyPressed(Key::Shift, kRightShiftCode);
    model.keyReleased(Key::Shift, kShiftCode);
    move(400, 230);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 100})) << "letting go of the held one frees nothing";
    model.keyReleased(Key::Shift, kRightShiftCode);
    EXPECT_EQ(model.selection(), (Rect{100, 100, 300, 130}));
}

TEST_F(SelectionModelTest, spaceBeforeTheDragTogglesWindowModeAndBack) {
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(model.mode(), CaptureMode::Window);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(model.mode(), CaptureMode::Window) << "a held key toggles once";
    model.keyReleased(Key::Space, kSpaceCode);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(model.mode(), CaptureMode::Area);
}

TEST_F(SelectionModelTest, aClickInWindowModeTakesTheWindow) {
    model.keyPressed(Key::Space, kSpaceCode);
    press(100, 100);
    EXPECT_FALSE(model.dragging());
    model.keyReleased(Key::Space, kSpaceCode);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(model.mode(), CaptureMode::Window) << "not between press and release";
    EXPECT_EQ(release(101, 100), Outcome::CaptureWindow);
}

TEST_F(SelectionModelTest, escapeAndTheSecondaryButtonCancelAtAnyTime) {
    EXPECT_EQ(model.keyPressed(Key::Escape, kEscapeCode), Outcome::None);
    EXPECT_EQ(model.keyReleased(Key::Escape, kEscapeCode), Outcome::Cancel);
    SelectionModel dragged(CaptureMode::Area, {{0, 0, 1280, 800}}, {0, 0});
    dragged.buttonPressed(Button::Primary, {10, 10});
    dragged.pointerMoved({50, 50});
    EXPECT_EQ(dragged.buttonPressed(Button::Secondary, {50, 50}), Outcome::None);
    EXPECT_EQ(dragged.buttonReleased(Button::Secondary, {50, 50}), Outcome::Cancel);
    SelectionModel window(CaptureMode::Window, {{0, 0, 1280, 800}}, {0, 0});
    window.keyPressed(Key::Escape, kEscapeCode);
    EXPECT_EQ(window.keyReleased(Key::Escape, kEscapeCode), Outcome::Cancel);
}

TEST_F(SelectionModelTest, escapeEndsADragAtOnceAndCancelsWhenItComesUp) {
    press(10, 10);
    move(60, 50);
    EXPECT_EQ(model.keyPressed(Key::Escape, kEscapeCode), Outcome::None);
    EXPECT_FALSE(model.dragging());
    EXPECT_EQ(model.keyPressed(Key::Escape, kEscapeCode), Outcome::None) << "a repeat";
    EXPECT_EQ(release(90, 90), Outcome::None) << "it was given up";
    press(20, 20);
    EXPECT_FALSE(model.dragging());
    EXPECT_EQ(release(80, 80), Outcome::None);
    EXPECT_EQ(model.keyReleased(Key::Escape, kEscapeCode), Outcome::Cancel);
}

TEST_F(SelectionModelTest, anEscapeHeldSinceBeforeTheCaptureDoesNothingWhenReleased) {
    model.keyHeldAtStart(kEscapeCode);
    EXPECT_EQ(model.keyPressed(Key::Escape, kEscapeCode), Outcome::None);
    EXPECT_EQ(model.keyReleased(Key::Escape, kEscapeCode), Outcome::None);
    model.keyPressed(Key::Escape, kEscapeCode);
    EXPECT_EQ(model.keyReleased(Key::Escape, kEscapeCode), Outcome::Cancel);
}

TEST_F(SelectionModelTest, aButtonHeldSinceBeforeTheCaptureDoesNothingWhenReleased) {
    EXPECT_EQ(release(10, 10), Outcome::None);
    EXPECT_EQ(model.buttonReleased(Button::Secondary, {10, 10}), Outcome::None);
    SelectionModel window(CaptureMode::Window, {{0, 0, 1280, 800}}, {0, 0});
    EXPECT_EQ(window.buttonReleased(Button::Primary, {10, 10}), Outcome::None);
}

TEST_F(SelectionModelTest, otherKeysAndButtonsMeanNothing) {
    EXPECT_EQ(model.keyPressed(Key::Other, 38), Outcome::None);
    EXPECT_EQ(model.buttonPressed(Button::Other, {10, 10}), Outcome::None);
    EXPECT_EQ(model.buttonReleased(Button::Other, {90, 90}), Outcome::None);
    EXPECT_FALSE(model.dragging());
    EXPECT_EQ(model.mode(), CaptureMode::Area);
}

TEST_F(SelectionModelTest, otherCoordinatesComeBetweenDragsAndNotWithinOne) {
    model.setSpace({{0, 0, 2560, 1600}, {2560, 0, 800, 600}}, {2000, 1500});
    EXPECT_EQ(model.pointer(), (Point{2000, 1500}));
    EXPECT_EQ(model.monitorUnderPointer(), (Rect{0, 0, 2560, 1600}));
    press(2000, 1500);
    model.setSpace({{0, 0, 100, 100}}, {50, 50});
    move(2600, 500);
    EXPECT_EQ(model.selection(), (Rect{2000, 500, 600, 1000}));
    EXPECT_EQ(model.monitorUnderPointer(), (Rect{2560, 0, 800, 600}));
}

TEST_F(SelectionModelTest, whereWindowsAreNotKnownSpaceDoesNotLeadToThem) {
    model.setWindowsKnown(false);
    model.keyPressed(Key::Space, kSpaceCode);
    EXPECT_EQ(model.mode(), CaptureMode::Area);
    model.keyReleased(Key::Space, kSpaceCode);
    // It still moves a selection.
    press(100, 100);
    move(200, 200);
    model.keyPressed(Key::Space, kSpaceCode);
    move(250, 200);
    EXPECT_EQ(model.selection(), (Rect{150, 100, 100, 100}));
}

TEST_F(SelectionModelTest, knowsTheMonitorOfThePointer) {
    SelectionModel two(CaptureMode::Area, {{0, 200, 800, 600}, {800, 0, 640, 480}}, {900, 10});
    EXPECT_EQ(two.monitorUnderPointer(), (Rect{800, 0, 640, 480}));
    two.pointerMoved({100, 100});
    EXPECT_EQ(two.monitorUnderPointer(), (Rect{0, 200, 800, 600})) << "over no monitor: the nearest";
}

} // namespace
} // namespace framora
