// Toasts on compositors that move them, close them, or die under them.

#include "desktop/wayland/odd/OddProgram.h"
#include "feedback/ToastManager.h"
#include "platform/wayland/WaylandToastPanels.h"
#include "support/FixedAppearance.h"
#include "support/ManualMainQueue.h"

#include <linux/input-event-codes.h>

namespace framora {
namespace {

bool soon(const std::function<bool()>& condition) {
    return DesktopSession::waitFor(condition, 5000);
}

CompositorScript ordinary() {
    CompositorScript script;
    script.outputs[0].mode = {1280, 800};
    return script;
}

/// The program with toasts. What stands is taken down with it.
struct Toasts {
    explicit Toasts(const CompositorScript& script = ordinary())
        : program(script), panels(*program.connection, *program.outputs, queue, nullptr),
          manager(ToastServices{queue, panels, *program.screens, appearance,
                                [this](const QImage&) { ++pressed; }}) {}

    void show() { manager.show(QStringLiteral("Copied"), QStringLiteral("photo"), true); }
    void showInteractive() {
        QImage picture(400, 250, QImage::Format_RGB32);
        picture.fill(QColor(220, 90, 60));
        manager.showInteractive(QStringLiteral("Copied"), QStringLiteral("photo"), picture);
    }
    int surfaces() {
        program.connection->roundTrip();
        return program.compositor->layerSurfaces();
    }
    bool isSeen(const char* output = "ONE") {
        program.connection->roundTrip();
        return !program.compositor->shown(QLatin1String(output)).isNull();
    }

    OddProgram program;
    ManualMainQueue queue;
    FixedAppearance appearance;
    int pressed = 0;
    WaylandToastPanels panels;
    ToastManager manager;
};

TEST(OddToastTest, aToastWhoseOutputGoesComesBackAndEndsInItsTime) {
    Toasts toasts;
    toasts.show();
    EXPECT_EQ(toasts.surfaces(), 1);
    toasts.program.compositor->closeSurfaces();
    EXPECT_TRUE(soon([&] { return toasts.surfaces() == 0; }));
    toasts.queue.advance(0.01);
    EXPECT_EQ(toasts.surfaces(), 1) << "it stands somewhere else";
    toasts.queue.advance(3);
    EXPECT_FALSE(toasts.manager.isShowing());
    EXPECT_EQ(toasts.surfaces(), 0);
}

TEST(OddToastTest, aCompositorThatAlwaysTakesItAwayIsNotContestedWithForEver) {
    CompositorScript script = ordinary();
    script.closeSurfaces = true;
    Toasts toasts(script);
    toasts.show();
    int comings = 0;
    while (comings < 20) {
        if (toasts.surfaces() == 1)
            ++comings;
        toasts.program.connection->roundTrip();
        toasts.queue.advance(0.01);
        if (toasts.surfaces() == 0)
            break;
    }
    EXPECT_LE(comings, 4);
    toasts.queue.advance(3);
    EXPECT_FALSE(toasts.manager.isShowing());
}

TEST(OddToastTest, withdrawnItHasNoSurfaceUntilItIsRestored) {
    Toasts toasts;
    toasts.show();
    toasts.panels.withdraw();
    EXPECT_EQ(toasts.surfaces(), 0);
    toasts.panels.restore();
    EXPECT_EQ(toasts.surfaces(), 1);
    toasts.panels.withdraw();
    toasts.queue.advance(3);
    EXPECT_FALSE(toasts.manager.isShowing()) << "its time passes meanwhile";
    toasts.panels.restore();
    EXPECT_EQ(toasts.surfaces(), 0);
}

TEST(OddToastTest, aSizeOfNothingIsItsOwnSize) {
    CompositorScript script = ordinary();
    script.configure = QSize(0, 0);
    Toasts toasts(script);
    toasts.show();
    EXPECT_TRUE(soon([&] { return toasts.isSeen(); }));
    toasts.program.compositor->configureSurfaces({0, 0});
    EXPECT_TRUE(toasts.program.connection->roundTrip());
    EXPECT_TRUE(toasts.program.connection->isValid());
}

TEST(OddToastTest, oneThatIsNeverConfiguredEndsInItsTimeUnseen) {
    CompositorScript script = ordinary();
    script.configure.reset();
    Toasts toasts(script);
    toasts.show();
    EXPECT_FALSE(toasts.isSeen());
    toasts.queue.advance(3);
    EXPECT_FALSE(toasts.manager.isShowing());
    EXPECT_EQ(toasts.surfaces(), 0);
}

TEST(OddToastTest, itsTimePassesWhenTheCompositorDiesUnderIt) {
    Toasts toasts;
    toasts.showInteractive();
    EXPECT_TRUE(soon([&] { return toasts.isSeen(); }));
    toasts.program.compositor->die();
    EXPECT_TRUE(soon([&] { return !toasts.program.connection->isValid(); }));
    toasts.panels.withdraw();
    toasts.panels.restore();
    toasts.queue.advance(10);
    EXPECT_FALSE(toasts.manager.isShowing());
}

TEST(OddToastTest, itIsPressedAlsoByAPointerThatWasPluggedInAgain) {
    Toasts toasts;
    toasts.showInteractive();
    EXPECT_TRUE(soon([&] { return toasts.isSeen(); }));
    const QImage seen = toasts.program.compositor->shown();
    const QPointF middle(seen.width() / 2.0, seen.height() / 2.0);
    toasts.program.compositor->pointTo(middle);
    toasts.program.compositor->setCapabilities(0);
    toasts.program.connection->roundTrip();
    toasts.program.compositor->setCapabilities(CompositorScript::Pointer);
    toasts.program.connection->roundTrip();
    toasts.program.connection->roundTrip();
    toasts.program.compositor->pointTo(middle);
    toasts.program.compositor->press(BTN_LEFT);
    toasts.program.compositor->release(BTN_LEFT);
    EXPECT_TRUE(soon([&] {
        toasts.queue.runPending();
        return toasts.pressed == 1;
    }));
}

TEST(OddToastTest, everyOutputThatGoesWhileItStandsLeavesItToTheOther) {
    CompositorScript script = ordinary();
    ScriptedOutput second;
    second.name = QStringLiteral("SECOND");
    second.mode = {1024, 768};
    second.position = {1280, 0};
    script.outputs.push_back(second);
    Toasts toasts(script);
    toasts.show();
    EXPECT_TRUE(soon([&] { return toasts.isSeen(); }));
    toasts.program.compositor->removeOutput(QStringLiteral("ONE"));
    EXPECT_TRUE(soon([&] {
        toasts.queue.runPending();
        return toasts.isSeen("SECOND");
    }));
    toasts.program.compositor->removeOutput(QStringLiteral("SECOND"));
    EXPECT_TRUE(toasts.program.connection->roundTrip());
    toasts.queue.advance(3);
    EXPECT_FALSE(toasts.manager.isShowing());
    EXPECT_EQ(toasts.surfaces(), 0);
}

} // namespace
} // namespace framora
