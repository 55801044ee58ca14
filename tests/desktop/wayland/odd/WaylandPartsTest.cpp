// The program's parts on a compositor whose every word the test chooses.

#include "desktop/wayland/odd/OddProgram.h"
#include "platform/wayland/WaylandConnection.h"

#include <QBuffer>
#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <ctime>
#include <unistd.h>

namespace framora {
namespace {

bool soon(const std::function<bool()>& condition) {
    return DesktopSession::waitFor(condition, 5000);
}

double usedSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

QByteArray somePng() {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImage image(3, 2, QImage::Format_RGB32);
    image.fill(QColor(12, 200, 90));
    image.save(&buffer, "PNG");
    return bytes;
}

CompositorScript withoutOutputs() {
    CompositorScript script;
    script.outputs.clear();
    return script;
}

ScriptedOutput outputOf(const char* name, QSize mode, int scale = 1, QSize logical = {}) {
    ScriptedOutput output;
    output.name = QLatin1String(name);
    output.mode = mode;
    output.scale = scale;
    output.logicalSize = logical;
    return output;
}

TEST(OddConnectionTest, aCompositorThatIsSilentIsNotWaitedForLongerThanSaid) {
    OddProgram program;
    ASSERT_TRUE(program.connection->isValid());
    program.compositor->freeze();
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(program.connection->roundTrip(200));
    EXPECT_FALSE(WaylandConnection(200).isValid()) << "one that does not answer is none";
    EXPECT_LT(timer.elapsed(), 3000);
    program.compositor->thaw();
    EXPECT_TRUE(program.connection->roundTrip());
}

TEST(OddConnectionTest, everyPartOutlivesTheCompositor) {
    OddProgram program;
    const auto screens = program.screens->screens();
    const auto count = program.pasteboard->changeCount();
    program.compositor->die();
    EXPECT_TRUE(soon([&] { return !program.connection->isValid(); }));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(program.screens->screens(), screens);
    EXPECT_EQ(program.pasteboard->changeCount(), count);
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    EXPECT_FALSE(program.connection->roundTrip());
    EXPECT_FALSE(WaylandConnection().isValid());
    EXPECT_LT(timer.elapsed(), 2000);
    // A dead socket stays readable: nobody may look at it for ever.
    const double before = usedSeconds();
    QElapsedTimer quiet;
    quiet.start();
    soon([&] { return quiet.elapsed() > 100; });
    EXPECT_LT(usedSeconds() - before, 0.08);
}

TEST(OddScreensTest, outputsComeAndGoAndTheLastOnesAreRemembered) {
    OddProgram program;
    ASSERT_EQ(program.screens->screens().size(), 1u);
    program.compositor->addOutput(outputOf("SECOND", {2560, 1440}, 2));
    ASSERT_EQ(program.screens->screens().size(), 2u);
    EXPECT_EQ(program.screens->screens().back().pixelRatio, 2);
    program.compositor->removeOutput(QStringLiteral("ONE"));
    ASSERT_EQ(program.screens->screens().size(), 1u);
    EXPECT_EQ(program.screens->screens().front().name, QStringLiteral("SECOND"));
    const auto last = program.screens->screens();
    program.compositor->removeOutput(QStringLiteral("SECOND"));
    EXPECT_TRUE(program.connection->roundTrip());
    EXPECT_TRUE(program.outputs->all().empty());
    EXPECT_EQ(program.screens->screens(), last) << "a toast always has a screen";
}

TEST(OddScreensTest, aSessionThatNeverHadAnOutputHasAScreenAllTheSame) {
    OddProgram program(withoutOutputs());
    ASSERT_EQ(program.screens->screens().size(), 1u);
    EXPECT_FALSE(program.screens->screens().front().pixelFrame.isEmpty());
}

TEST(OddScreensTest, aModeThatChangesIsTheScreensAtOnce) {
    OddProgram program;
    program.compositor->changeOutput(QStringLiteral("ONE"), [](ScriptedOutput& output) {
        output.mode = {640, 400};
        output.transform = 1;
        output.scale = 2;
    });
    EXPECT_EQ(program.screens->screens().front().pixelFrame, QRect(0, 0, 400, 640));
    EXPECT_EQ(program.screens->screens().front().pixelRatio, 2);
}

TEST(OddScreensTest, aSpaceThatCountsPixelsHasTheWholeRatioItsWindowsAreDrawnAt) {
    CompositorScript script = withoutOutputs();
    script.outputs = {outputOf("A", {3840, 2160}, 2, {3840, 2160}),
                      outputOf("B", {3840, 2160}, 2, {2560, 1440})};
    OddProgram program(script);
    const auto all = program.screens->screens();
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].pixelRatio, 2);
    EXPECT_EQ(all[1].pixelRatio, 1.5);
}

TEST(OddScreensTest, figuresThatMeanNothingGiveNoScreenWithoutAreaOrRatio) {
    for (const ScriptedOutput& odd :
         {outputOf("ODD", {0, 0}), outputOf("ODD", {-4, 7}), outputOf("ODD", {320, 200}, 0),
          outputOf("ODD", {320, 200}, -2), outputOf("ODD", {320, 200}, 1, {0, 5}),
          outputOf("ODD", {320, 200}, 1, {-1, -1}), outputOf("", {320, 200})}) {
        CompositorScript script = withoutOutputs();
        script.outputs = {odd};
        OddProgram program(script);
        for (const Screen& screen : program.screens->screens()) {
            EXPECT_FALSE(screen.pixelFrame.isEmpty());
            EXPECT_GT(screen.pixelRatio, 0);
        }
    }
}

class OddPasteboardTest : public testing::TestWithParam<bool> {
protected:
    static CompositorScript script() {
        CompositorScript made;
        made.extDataControl = GetParam();
        made.wlrDataControl = GetParam() ? 0 : 2;
        return made;
    }

    OddProgram program{script()};
};

INSTANTIATE_TEST_SUITE_P(, OddPasteboardTest, testing::Bool(),
                         [](const auto& run) { return run.param ? "ext" : "wlr"; });

TEST_P(OddPasteboardTest, countsAndReadsByEitherProtocol) {
    EXPECT_EQ(program.pasteboard->changeCount(), 0);
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    program.copy({"text/plain", "image/png"}, somePng());
    EXPECT_EQ(program.pasteboard->changeCount(), 1);
    EXPECT_EQ(program.pasteboard->readImage().size(), QSize(3, 2));
    program.copy({"image/png"}, "two");
    program.copy({"image/png"}, "three");
    EXPECT_EQ(program.pasteboard->changeCount(), 3);
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    EXPECT_EQ(program.read, "three");
    EXPECT_EQ(program.offers(), 1) << "offers that are past are given back";
}

TEST_P(OddPasteboardTest, wordsThatAWindowOfOursCopiedDoNotHideAnotherProgramsPicture) {
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
    program.copy({"image/png"}, somePng());
    EXPECT_FALSE(program.pasteboard->readImage().isNull());
    QGuiApplication::clipboard()->clear();
}

TEST_P(OddPasteboardTest, hostileTypesAreNoMoreThanTypes) {
    std::vector<QByteArray> types{"",
                                  "image/png\n",
                                  "\xff\xfe",
                                  "IMAGE/PNG",
                                  "image/",
                                  "../../image/png",
                                  QByteArray(3000, 'x'),
                                  "%s%n%s%n",
                                  "image/pngg"};
    program.copy(types, somePng());
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    EXPECT_EQ(program.pasteboard->changeCount(), 1);
    types.insert(types.end(), 2000, "text/plain");
    types.emplace_back("image/png");
    program.copy(types, somePng());
    EXPECT_EQ(program.pasteboard->readImage().size(), QSize(3, 2));
    program.copy({}, somePng());
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
}

TEST_P(OddPasteboardTest, anOwnerThatGivesNothingOrRubbishGivesNoPicture) {
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("\x89PNG"), somePng().left(40), QByteArray(9000, 'x')}) {
        program.copy({"image/png"}, bytes);
        EXPECT_TRUE(program.pasteboard->readImage().isNull());
    }
}

TEST_P(OddPasteboardTest, aDamagedPictureGivesWayToAnotherTypeOfIt) {
    program.copy({"image/png", "image/bmp"}, [](const QByteArray& type, int descriptor) {
        const QByteArray bytes = type == "image/bmp" ? somePng() : QByteArray("x");
        EXPECT_EQ(write(descriptor, bytes.constData(), std::size_t(bytes.size())), bytes.size());
        close(descriptor);
    });
    EXPECT_EQ(program.pasteboard->readImage().size(), QSize(3, 2));
}

TEST_P(OddPasteboardTest, anOwnerThatStallsIsGivenUp) {
    int held = -1;
    program.copy({"image/png"}, [&](const QByteArray&, int descriptor) {
        EXPECT_EQ(write(descriptor, "\x89PNG", 4), 4);
        held = descriptor;
    });
    // It returns at all, with the other end still open.
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    ASSERT_GE(held, 0);
    close(held);
}

TEST_P(OddPasteboardTest, aCompositorThatDiesBetweenTheQuestionAndTheAnswerGivesNoPicture) {
    program.copy({"image/png"}, [&](const QByteArray&, int descriptor) {
        program.compositor->perform([](ScriptedPieces& pieces) {
            wl_client* client = nullptr;
            wl_list* const clients = wl_display_get_client_list(pieces.display);
            wl_client_for_each(client, clients) wl_client_post_no_memory(client);
        });
        close(descriptor);
    });
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
    EXPECT_TRUE(soon([&] { return !program.connection->isValid(); }));
    EXPECT_EQ(program.pasteboard->changeCount(), 1);
}

TEST_P(OddPasteboardTest, aSeatThatGoesGivesWayToTheNextWithoutARace) {
    ASSERT_TRUE(program.connection->roundTrip());
    EXPECT_EQ(program.devices(), 1);
    // The seat's end is told before its name is withdrawn.
    program.compositor->perform([](ScriptedPieces& pieces) { pieces.clipboard->finishDevices(); });
    EXPECT_TRUE(soon([&] { return program.devices() == 0; }));
    program.connection->roundTrip();
    program.connection->roundTrip();
    EXPECT_EQ(program.devices(), 0) << "the dying seat is not asked again";
    program.compositor->perform([](ScriptedPieces& pieces) {
        pieces.seat->withdraw();
        pieces.seat->offer();
    });
    EXPECT_TRUE(soon([&] { return program.devices() == 1; }));
    const auto count = program.pasteboard->changeCount();
    program.copy({"image/png"}, somePng());
    EXPECT_EQ(program.pasteboard->changeCount(), count + 1);
}

TEST_P(OddPasteboardTest, whatIsWrittenIsServedUntilAnotherProgramCopies) {
    program.pasteboard->writePng(somePng());
    EXPECT_EQ(program.pasteboard->changeCount(), 1);
    EXPECT_EQ(program.pasteboard->readImage().size(), QSize(3, 2));
    program.pasteboard->writePng(somePng());
    EXPECT_EQ(program.pasteboard->changeCount(), 2);
    EXPECT_TRUE(soon([&] { return program.compositor->clients() == 2; })) << "the first one has ended";
    program.copy({"text/plain"}, "words");
    EXPECT_EQ(program.pasteboard->changeCount(), 3);
    EXPECT_TRUE(soon([&] { return program.compositor->clients() == 1; }));
}

TEST(OddClipboardsTest, devicesThatAreFinishedAtOnceAreAskedForOnce) {
    CompositorScript script;
    script.finishDevices = true;
    OddProgram program(script);
    EXPECT_EQ(program.pasteboard->changeCount(), 0);
    EXPECT_TRUE(program.connection->roundTrip());
    EXPECT_EQ(program.devices(), 0);
    EXPECT_TRUE(program.pasteboard->readImage().isNull());
}

TEST(OddClipboardsTest, withoutADataControlProtocolThereIsNoSuchClipboard) {
    CompositorScript script;
    script.wlrDataControl = 0;
    OddProgram program(script);
    EXPECT_FALSE(program.pasteboard);
}

} // namespace
} // namespace framora
