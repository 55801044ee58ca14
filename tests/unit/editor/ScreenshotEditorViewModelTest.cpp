#include "unit/editor/ModelFixture.h"

#include "editor/model/ColorConversion.h"
#include "editor/render/ScreenshotRenderer.h"
#include "support/JpegOfScans.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>

namespace framora {
namespace {

using ViewModel = ModelFixture;

TEST_F(ViewModel, StartsFromTheSharedDefaultWhenThereIsNoTexture) {
    const auto model = makeModel(picture(20, 10));
    EXPECT_EQ(model->config(), ScreenshotStyleConfig::shared());
    EXPECT_TRUE(model->wallpaperImages().empty());
    EXPECT_EQ(model->canvasSize(), QSizeF(0, 0));
    EXPECT_EQ(model->offset(), QSizeF(0, 0));
    EXPECT_EQ(model->lastOffset(), QSizeF(0, 0));
    EXPECT_TRUE(model->selectedWallpaperURL().isEmpty());
    EXPECT_TRUE(model->newTextContent().isEmpty());
    EXPECT_EQ(model->newTextFontSize(), 24.0);
    EXPECT_EQ(model->newTextColor(), QColor(Qt::white));
    EXPECT_FALSE(model->currentRedactStart().isValid());
    EXPECT_FALSE(model->currentRedactEnd().isValid());
}

TEST_F(ViewModel, TakesThePackagedTextureAsItsBackground) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    const QUrl url = QUrl::fromLocalFile(texturePath);
    EXPECT_EQ(model->config().backgroundType, BackgroundType::image);
    EXPECT_EQ(model->config().backgroundImageURL, url);
    EXPECT_EQ(model->selectedWallpaperURL(), url);
    ASSERT_EQ(model->wallpaperImages().size(), 1U);
    EXPECT_EQ(model->wallpaperImages()[0].first, url);
    EXPECT_EQ(model->wallpaperImages()[0].second.size(), QSize(300, 300))
        << "800 x 800 fitted into 400 x 300";
}

TEST_F(ViewModel, FindsTheTextureAnywhereInTheResourcesButFirstWhereItBelongs) {
    addTexture({}, QStringLiteral("elsewhere"));
    EXPECT_EQ(makeModel(picture(20, 10))->selectedWallpaperURL(), QUrl::fromLocalFile(texturePath));
    addTexture();
    EXPECT_EQ(makeModel(picture(20, 10))->selectedWallpaperURL(), QUrl::fromLocalFile(texturePath));
}

TEST_F(ViewModel, FindsTheTextureBesideTheResourcesWhenTheBundleDoesNotKnowIt) {
    addTexture();
    resources.bundled = false;
    EXPECT_EQ(makeModel(picture(20, 10))->selectedWallpaperURL(), QUrl::fromLocalFile(texturePath));
}

TEST_F(ViewModel, KeepsItsDefaultsWhenTheTextureCannotBeRead) {
    addTexture("this is no picture");
    const auto model = makeModel(picture(20, 10));
    EXPECT_EQ(model->config(), ScreenshotStyleConfig::shared());
    EXPECT_TRUE(model->wallpaperImages().empty());
}

TEST_F(ViewModel, ZoomsInByGeometricStepsAndStopsAt300) {
    const auto model = makeModel(picture(20, 10));
    for (const double expected : {120.0, 144.0, 172.8, 207.36, 248.832, 298.5984, 300.0, 300.0}) {
        model->zoomIn();
        EXPECT_NEAR(model->config().zoom, expected, 1e-9);
    }
    EXPECT_EQ(model->config().zoom, 300.0);
}

TEST_F(ViewModel, ZoomsOutByGeometricStepsAndStopsAt10) {
    const auto model = makeModel(picture(20, 10));
    model->zoomOut();
    EXPECT_NEAR(model->config().zoom, 100.0 / 1.2, 1e-9);
    for (int i = 0; i < 20; ++i)
        model->zoomOut();
    EXPECT_EQ(model->config().zoom, 10.0);
    model->zoomToActualSize();
    EXPECT_EQ(model->config().zoom, 100.0);
}

TEST_F(ViewModel, ZoomsByStepsFromWhereALongPictureWasFitted) {
    const auto model = makeModel(picture(20, 12'000));
    model->setCanvasSize({1400, 668});
    model->fitToWindow();
    queue.advance(0.1);
    ASSERT_NEAR(model->config().zoom, 5.0, 1e-9);
    model->zoomIn();
    EXPECT_NEAR(model->config().zoom, 6.0, 1e-9);
    model->zoomOut();
    EXPECT_EQ(model->config().zoom, 10.0) << "the limit of the other way";
}

TEST_F(ViewModel, FitsALargePictureATenthOfASecondLater) {
    const auto model = makeModel(picture(3000, 2000));
    model->setCanvasSize({1400, 900});
    model->setOffset({3, 4});
    model->setLastOffset({5, 6});
    model->fitToWindow();
    queue.advance(0.09);
    EXPECT_EQ(model->config().zoom, 100.0);
    queue.advance(0.02);
    EXPECT_NEAR(model->config().zoom, 1016.0 / 3160.0 * 100.0, 1e-9);
    EXPECT_NEAR(model->config().zoom, 32.15, 0.005);
    EXPECT_EQ(model->offset(), QSizeF(0, 0));
    EXPECT_EQ(model->lastOffset(), QSizeF(0, 0));
}

TEST_F(ViewModel, FittingNeverEnlarges) {
    const auto model = makeModel(picture(200, 100));
    model->setCanvasSize({1400, 900});
    change(*model, [](auto& config) { config.zoom = 250; });
    model->fitToWindow();
    queue.advance(0.1);
    EXPECT_EQ(model->config().zoom, 100.0);
}

TEST_F(ViewModel, FittingCountsANarrowCanvasAs200Wide) {
    for (const double width : {0.0, 300.0, 583.0, 584.0}) {
        const auto model = makeModel(picture(3000, 10));
        model->setCanvasSize({width, 900});
        model->fitToWindow();
        queue.advance(0.1);
        EXPECT_NEAR(model->config().zoom, 200.0 / 3160.0 * 100.0, 1e-9) << width;
    }
}

TEST_F(ViewModel, FittingMeasuresThePictureInPoints) {
    QImage image = picture(6000, 4000);
    image.setDevicePixelRatio(2);
    const auto model = makeModel(image);
    model->setCanvasSize({1400, 900});
    model->fitToWindow();
    queue.advance(0.1);
    EXPECT_NEAR(model->config().zoom, 1016.0 / 3160.0 * 100.0, 1e-9);
}

TEST_F(ViewModel, AFitFollowsTheWindowsSizeUntilTheUserZooms) {
    const auto model = makeModel(picture(3000, 2000));
    model->setCanvasSize({1400, 900});
    queue.advance(0.2);
    EXPECT_EQ(model->config().zoom, 100.0) << "nothing was fitted yet";
    model->fitToWindow();
    queue.advance(0.1);
    for (const double width : {1200.0, 1100.0, 1000.0})
        model->setCanvasSize({width, 900});
    EXPECT_EQ(queue.waitingCount(), 1U) << "only the last size counts";
    queue.advance(0.1);
    EXPECT_NEAR(model->config().zoom, 616.0 / 3160.0 * 100.0, 1e-9);

    model->setCanvasSize({1300, 900});
    model->zoomIn();
    const double chosen = model->config().zoom;
    queue.advance(0.2);
    EXPECT_EQ(model->config().zoom, chosen) << "the user was faster";
    model->setCanvasSize({900, 900});
    queue.advance(0.2);
    EXPECT_EQ(model->config().zoom, chosen);
    model->fitToWindow();
    queue.advance(0.1);
    EXPECT_NEAR(model->config().zoom, 516.0 / 3160.0 * 100.0, 1e-9);
}

TEST_F(ViewModel, SaysThatItFittedAlsoWhereTheZoomStays) {
    const auto model = makeModel(picture(20, 10));
    model->setCanvasSize({1400, 900});
    QSignalSpy fitted(model.get(), &ScreenshotEditorViewModel::fitted);
    model->fitToWindow();
    EXPECT_EQ(fitted.count(), 0);
    queue.advance(0.1);
    EXPECT_EQ(fitted.count(), 1);
}

TEST_F(ViewModel, ZoomsToAnyPercentageWithinItsLimits) {
    const auto model = makeModel(picture(20, 10));
    for (const auto& [asked, given] : {std::pair(123.4, 123.4), {9.0, 10.0}, {301.0, 300.0}}) {
        model->zoomTo(asked);
        EXPECT_EQ(model->config().zoom, given);
    }
}

TEST_F(ViewModel, AFitThatWaitsEndsWithItsModel) {
    auto model = makeModel(picture(20, 10));
    model->fitToWindow();
    EXPECT_EQ(queue.waitingCount(), 1U);
    model.reset();
    EXPECT_EQ(queue.waitingCount(), 0U);
    queue.advance(1);
}

TEST_F(ViewModel, ResettingTheDispositionLeavesEverythingElseAlone) {
    const auto model = makeModel(picture(20, 10));
    change(*model, [](auto& config) {
        config.rotation = 270;
        config.zoom = 55;
        config.scale = 2;
        config.rotationX = 12;
        config.screenshotOffset = {7, 8};
    });
    model->setOffset({1, 2});
    model->setLastOffset({3, 4});
    ScreenshotStyleConfig expected = model->config();
    expected.rotation = 0;
    model->resetDisposition();
    EXPECT_EQ(model->config(), expected);
    EXPECT_EQ(model->offset(), QSizeF(0, 0));
    EXPECT_EQ(model->lastOffset(), QSizeF(0, 0));
}

TEST_F(ViewModel, RandomizingDrawsInItsFixedOrderFromItsFixedRanges) {
    const auto model = makeModel(picture(20, 10));
    model->randomizeGradient();
    const std::vector<std::pair<double, double>> expected{{0, 1},       {0.6, 1.0}, {0.7, 0.95}, {0.08, 0.2},
                                                          {0.5, 0.9},   {0.6, 0.9}, {0.25, 0.5}, {0.5, 0.95},
                                                          {0.65, 0.95}, {0, 7}};
    EXPECT_EQ(random.ranges, expected);
}

TEST_F(ViewModel, RandomizingWritesColoursAndAngleAndNothingElse) {
    const auto model = makeModel(picture(20, 10));
    change(*model, [](auto& config) {
        config.gradientConfig.style = GradientStyle::radial;
        config.gradientConfig.blurAmount = 5;
        config.gradientConfig.noiseAmount = 6;
        config.gradientConfig.saturation = 70;
        config.gradientConfig.brightness = 80;
    });
    ScreenshotStyleConfig expected = model->config();
    ASSERT_TRUE(expected.selectedGradientPreset);
    // Hue 0.95 and its neighbours wrap round: 0.95 + 0.2 = 0.15 and 0.95 + 0.5 = 0.45.
    random.positions = {0.95, 1, 1, 1, 1, 1, 1, 1, 1, 5.0 / 7.0};
    model->randomizeGradient();
    const auto hsv = [](double hue, double saturation, double value) {
        return fromQColor(QColor::fromHsvF(float(hue), float(saturation), float(value)).toRgb());
    };
    const auto expectNear = [](const Color& actual, const Color& wanted) {
        EXPECT_NEAR(actual.red, wanted.red, 2e-4);
        EXPECT_NEAR(actual.green, wanted.green, 2e-4);
        EXPECT_NEAR(actual.blue, wanted.blue, 2e-4);
        EXPECT_EQ(actual.alpha, 1.0);
    };
    const SimpleGradientConfig& gradient = model->config().gradientConfig;
    expectNear(gradient.color1, hsv(0.95, 1.0, 0.95));
    expectNear(gradient.color2, hsv(0.15, 0.9, 0.9));
    expectNear(gradient.color3, hsv(0.45, 0.95, 0.95));
    EXPECT_EQ(gradient.angle, 225.0);
    expected.gradientConfig.color1 = gradient.color1;
    expected.gradientConfig.color2 = gradient.color2;
    expected.gradientConfig.color3 = gradient.color3;
    expected.gradientConfig.angle = 225.0;
    expected.selectedGradientPreset.reset();
    EXPECT_EQ(model->config(), expected);
}

TEST_F(ViewModel, TheSystemsDrawsStayInTheirRanges) {
    SystemRandomSource source;
    std::array<int, 8> seen{};
    for (int i = 0; i < 2000; ++i) {
        const double value = source.real(0.25, 0.5);
        EXPECT_GE(value, 0.25);
        EXPECT_LE(value, 0.5);
        const int integer = source.integer(0, 7);
        ASSERT_TRUE(integer >= 0 && integer <= 7);
        ++seen[std::size_t(integer)];
    }
    for (const int count : seen)
        EXPECT_GT(count, 0);
}

TEST_F(ViewModel, ImportingTheSameFileTwicePutsTwoEntriesInFront) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    change(*model, [](auto& config) {
        config.selectedMagicPreset = PresetCatalogues::magicPresets()[0];
        config.selectedGradient = GradientPreset{};
        config.selectedSolidColor = SolidColor{};
    });
    panels.answer =
        QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(1000, 500, Qt::blue)));
    model->chooseBackgroundImage();
    model->chooseBackgroundImage();
    finishImports();
    EXPECT_EQ(panels.openMessage, QStringLiteral("Select an image for background"));
    EXPECT_EQ(panels.openTypes,
              (QStringList{u"image/jpeg"_qs, u"image/png"_qs, u"image/heic"_qs, u"image/tiff"_qs,
                           u"image/webp"_qs, u"image/avif"_qs, u"image/gif"_qs, u"image/bmp"_qs}));
    ASSERT_EQ(model->wallpaperImages().size(), 3U);
    EXPECT_EQ(model->wallpaperImages()[0].first, *panels.answer);
    EXPECT_EQ(model->wallpaperImages()[1].first, *panels.answer);
    EXPECT_EQ(model->wallpaperImages()[0].second.size(), QSize(400, 200));
    EXPECT_EQ(model->wallpaperImages()[2].first, QUrl::fromLocalFile(texturePath));
    EXPECT_EQ(shared, (QList<QUrl>{*panels.answer, *panels.answer}))
        << "the cache refuses the second one itself";
    EXPECT_EQ(model->selectedWallpaperURL(), *panels.answer);
    EXPECT_EQ(model->config().backgroundImageURL, *panels.answer);
    EXPECT_FALSE(model->config().selectedMagicPreset);
    EXPECT_FALSE(model->config().selectedGradient);
    EXPECT_FALSE(model->config().selectedSolidColor);
}

TEST_F(ViewModel, ACancelledOrUnreadableImportChangesNothing) {
    const auto model = makeModel(picture(20, 10));
    const ScreenshotStyleConfig before = model->config();
    model->chooseBackgroundImage();
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("missing.png")));
    model->chooseBackgroundImage();
    EXPECT_EQ(background.startedCount, 1) << "a cancelled panel reads nothing";
    finishImports();
    EXPECT_EQ(model->config(), before);
    EXPECT_FALSE(model->canUndo());
    EXPECT_TRUE(model->wallpaperImages().empty());
    EXPECT_TRUE(shared.isEmpty());
    EXPECT_TRUE(toasts.isEmpty());
    EXPECT_FALSE(model->isLoadingWallpapers());
}

TEST_F(ViewModel, GoingItEndsItsImports) {
    const QString path = files.filePath(QStringLiteral("slow.jpg"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(jpegOfScans(4000, 40'000)); // most of a minute
    file.close();
    auto model = makeModel(picture(20, 10));
    model->importBackgroundImage(QUrl::fromLocalFile(path));
    model.reset();
    QElapsedTimer timer;
    timer.start();
    background.runPending();
    EXPECT_LT(timer.elapsed(), 3000);
}

TEST_F(ViewModel, AnImportIsReadElsewhereAndArrivesAsOneStep) {
    const auto model = makeModel(picture(20, 10));
    const ScreenshotStyleConfig before = model->config();
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    EXPECT_TRUE(model->isLoadingWallpapers());
    EXPECT_EQ(model->config(), before);
    background.runPending();
    EXPECT_EQ(model->config(), before) << "not on the thread that reads";
    EXPECT_TRUE(model->wallpaperImages().empty());
    // Whoever is told of the new choice finds the picture on offer and shared.
    QObject::connect(model.get(), &ScreenshotEditorViewModel::configChanged, [&] {
        EXPECT_EQ(model->wallpaperURLs(), QList<QUrl>{sea});
        EXPECT_EQ(shared, QList<QUrl>{sea});
        EXPECT_EQ(model->selectedWallpaperURL(), sea);
    });
    queue.runPending();
    EXPECT_EQ(model->config().backgroundImageURL, sea);
    EXPECT_FALSE(model->isLoadingWallpapers());
    model->disconnect();
    model->undo();
    EXPECT_EQ(model->config(), before);
    EXPECT_FALSE(model->canUndo());
}

TEST_F(ViewModel, ImportsStandInTheOrderInWhichTheyWereAskedFor) {
    const auto model = makeModel(picture(20, 10));
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    const QUrl sky = QUrl::fromLocalFile(writePicture(QStringLiteral("sky.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    model->importBackgroundImage(sky);
    finishImports();
    EXPECT_EQ(model->wallpaperURLs(), (QList<QUrl>{sky, sea}));
    EXPECT_EQ(shared, (QList<QUrl>{sea, sky}));
    EXPECT_EQ(model->config().backgroundImageURL, sky);
}

TEST_F(ViewModel, ALaterImportThatArrivesFirstStaysChosenAndInFront) {
    const auto model = makeModel(picture(20, 10));
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    const QUrl sky = QUrl::fromLocalFile(writePicture(QStringLiteral("sky.png"), picture(10, 10)));
    const QUrl sand = QUrl::fromLocalFile(writePicture(QStringLiteral("sand.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    model->importBackgroundImage(sky);
    background.runPendingBackwards();
    queue.runPending();
    EXPECT_EQ(model->wallpaperURLs(), (QList<QUrl>{sky, sea}));
    EXPECT_EQ(model->config().backgroundImageURL, sky);
    EXPECT_EQ(model->selectedWallpaperURL(), sky);
    model->importBackgroundImage(sand);
    finishImports();
    EXPECT_EQ(model->wallpaperURLs(), (QList<QUrl>{sand, sky, sea}));
    EXPECT_EQ(model->config().backgroundImageURL, sand);
}

TEST_F(ViewModel, WhatIsChosenWhileAnImportIsReadStaysChosen) {
    addTexture();
    const QUrl texture = QUrl::fromLocalFile(texturePath);
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    const std::vector<std::function<void(ScreenshotEditorViewModel&)>> choices{
        [&](auto& model) { model.selectWallpaper(texture); },
        [](auto& model) { model.selectMagicPreset(1); },
        [](auto& model) { model.pickCustomColor(Qt::red); },
        [](auto& model) { model.selectGradientPreset(2); },
        [](auto& model) { model.randomizeGradient(); },
        [](auto& model) { model.set(QStringLiteral("backgroundType"), QStringLiteral("gradient")); },
        [](auto& model) { model.undo(); },
    };
    for (const auto& choose : choices) {
        const auto model = makeModel(picture(20, 10));
        model->set(QStringLiteral("padding"), 33); // something to undo
        ASSERT_TRUE(model->dropBackgroundImages({sea}));
        choose(*model);
        const ScreenshotStyleConfig chosen = model->config();
        finishImports();
        EXPECT_EQ(model->config(), chosen);
        EXPECT_EQ(model->wallpaperURLs(), (QList<QUrl>{sea, texture})) << "on offer all the same";
    }
}

TEST_F(ViewModel, AnUnreadableImportLeavesTheOneBeforeItChosen) {
    const auto model = makeModel(picture(20, 10));
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    model->importBackgroundImage(QUrl::fromLocalFile(files.filePath(QStringLiteral("missing.png"))));
    finishImports();
    EXPECT_EQ(model->wallpaperURLs(), QList<QUrl>{sea});
    EXPECT_EQ(model->config().backgroundImageURL, sea);
}

TEST_F(ViewModel, AnImportThatArrivesAfterItsEditorDoesNothing) {
    auto model = makeModel(picture(20, 10));
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    background.runPending();
    model.reset();
    queue.runPending();
    EXPECT_TRUE(shared.isEmpty());
}

TEST_F(ViewModel, RendersWhatTheRendererGives) {
    const auto model = makeModel(picture(60, 40));
    change(*model, [](auto& config) { config.padding = 10; });
    const QImage image = model->renderFinalImage();
    EXPECT_EQ(image.size(), QSize(160, 120));
    EXPECT_EQ(image, ScreenshotRenderer(model->originalImage(), model->config()).render());
}

TEST_F(ViewModel, SavingWritesAPngOfTheRenderedPictureAndSaysSo) {
    const auto model = makeModel(picture(60, 40));
    queue.setTime(1763200000.9);
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    writePicture(QStringLiteral("out.png"), picture(1, 1));
    model->saveImage();
    EXPECT_EQ(panels.proposedName, QStringLiteral("screenshot_1763200000.png"));
    const QImage saved(panels.answer->toLocalFile());
    EXPECT_EQ(saved.size(), QSize(440, 400));
    EXPECT_NEAR(saved.dotsPerMeterX(), 144.0 / 0.0254, 1.0);
    QFile file(panels.answer->toLocalFile());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), encodePng(model->renderFinalImage(), 144.0));
    EXPECT_EQ(toasts, QStringList{QStringLiteral("Saved|checkmark.circle.fill|1")});
}

TEST_F(ViewModel, SavesThePictureAsItWasWhenTheUserAskedForIt) {
    const auto model = makeModel(picture(60, 40));
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    const QImage asked = model->renderFinalImage();
    panels.whileOpen = [&] { change(*model, [](auto& config) { config.padding = 1; }); };
    model->saveImage();
    EXPECT_EQ(QImage(panels.answer->toLocalFile()).size(), asked.size());
    EXPECT_NE(model->renderFinalImage().size(), asked.size());
}

TEST_F(ViewModel, MayBeLeftAtOnceWhileNoEditWouldBeLost) {
    const auto model = makeModel(picture(60, 40));
    EXPECT_TRUE(model->mayLeave());
    const auto edit = [&](double padding) {
        change(*model, [&](auto& config) { config.padding = padding; });
    };
    edit(33);
    EXPECT_FALSE(model->mayLeave());
    EXPECT_EQ(toasts.size(), 1);
    model->undo();
    EXPECT_TRUE(model->mayLeave());
    toasts.clear();
    queue.advance(ScreenshotEditorViewModel::secondsToLeave + 1);

    edit(34);
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("no/such/folder/out.png")));
    model->saveImage();
    EXPECT_FALSE(model->mayLeave()) << "nothing was saved";
    queue.advance(ScreenshotEditorViewModel::secondsToLeave + 1);
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    model->saveImage();
    EXPECT_TRUE(model->mayLeave());
    edit(35);
    EXPECT_FALSE(model->mayLeave());
    EXPECT_TRUE(model->mayLeave()) << "said twice";
    edit(36);
    EXPECT_FALSE(model->mayLeave()) << "nothing was said of this edit";
}

TEST_F(ViewModel, ACancelledSaveShowsNothing) {
    makeModel(picture(60, 40))->saveImage();
    EXPECT_EQ(panels.saveCount, 1);
    EXPECT_TRUE(toasts.isEmpty());
}

TEST_F(ViewModel, AConfirmedSaveThatCannotEncodeSaysSavedAndWritesNoFile) {
    encodeFails = true;
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    makeModel(picture(60, 40))->saveImage();
    EXPECT_FALSE(QFileInfo::exists(panels.answer->toLocalFile()));
    EXPECT_EQ(toasts, QStringList{QStringLiteral("Saved|checkmark.circle.fill|1")});
}

TEST_F(ViewModel, AFailedWriteIsNotReported) {
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("no/such/folder/out.png")));
    makeModel(picture(60, 40))->saveImage();
    EXPECT_EQ(toasts.size(), 1);
}

TEST_F(ViewModel, AskingForNoFileWhenThereIsNothingToRender) {
    const auto model = makeModel(picture(60, 40));
    change(*model, [](auto& config) { config.scale = 0; });
    ASSERT_TRUE(model->renderFinalImage().isNull());
    model->saveImage();
    EXPECT_EQ(panels.saveCount, 0);
    EXPECT_TRUE(toasts.isEmpty());
}

TEST_F(ViewModel, ShowsWallpapersByTheirFilesNamesAlsoWhereTheseAreNoText) {
    auto model = makeModel(picture(20, 10));
    model->mergeWallpapers({{QUrl(QStringLiteral("file:///a/b%20c%25.png")), picture(1, 1)},
                            {QUrl(QStringLiteral("file:///a/d%FFe.png")), picture(1, 1)}});
    const int first = int(model->wallpaperURLs().size()) - 2;
    EXPECT_EQ(model->wallpaperName(first), QStringLiteral("b c%.png"));
    const QString odd = model->wallpaperName(first + 1);
    EXPECT_TRUE(odd.startsWith(u'd') && odd.endsWith(u"e.png")) << odd.toStdString();
    EXPECT_EQ(model->wallpaperName(-1), QString());
    EXPECT_EQ(model->wallpaperName(first + 2), QString());
}

TEST_F(ViewModel, MergingWallpapersAppendsWhatWasNotThere) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    const QUrl texture = QUrl::fromLocalFile(texturePath);
    const QUrl a(QStringLiteral("file:///a.jpg"));
    const QUrl b(QStringLiteral("file:///b.jpg"));
    QSignalSpy changes(model.get(), &ScreenshotEditorViewModel::wallpaperImagesChanged);
    model->mergeWallpapers({{b, picture(1, 1)}, {texture, picture(1, 1)}, {a, picture(1, 1)}});
    EXPECT_EQ(model->wallpaperURLs(), (QList<QUrl>{texture, b, a}));
    EXPECT_EQ(model->wallpaperThumbnail(0).size(), QSize(300, 300))
        << "an entry that was there stays as it was";
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(model->wallpaperThumbnail(3).isNull());
}

TEST_F(ViewModel, AMagicPresetTakesOverFromEveryOtherColourSource) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    change(*model, [](auto& config) {
        config.selectedGradient = GradientPreset{};
        config.selectedSolidColor = SolidColor{};
    });
    model->selectMagicPreset(2);
    const ScreenshotStyleConfig& config = model->config();
    EXPECT_EQ(config.selectedMagicPreset, PresetCatalogues::magicPresets()[2]);
    EXPECT_EQ(model->magicPresetIndex(), 2);
    EXPECT_FALSE(config.selectedGradient);
    EXPECT_FALSE(config.selectedSolidColor);
    EXPECT_FALSE(config.backgroundImageURL);
    EXPECT_EQ(config.customColor, Color::clear());
    model->selectMagicPreset(5);
    EXPECT_EQ(model->magicPresetIndex(), 2) << "no such entry";
}

TEST_F(ViewModel, AnOwnColourTakesOverFromPresetsUnlessItIsClear) {
    const auto model = makeModel(picture(20, 10));
    change(*model, [](auto& config) {
        config.selectedMagicPreset = PresetCatalogues::magicPresets()[1];
        config.selectedGradient = GradientPreset{};
        config.selectedSolidColor = SolidColor{};
        config.backgroundImageURL = QUrl(QStringLiteral("file:///a.png"));
    });
    ScreenshotStyleConfig expected = model->config();
    model->pickCustomColor(QColor(0, 0, 0, 0));
    expected.customColor = Color::clear();
    EXPECT_EQ(model->config(), expected);
    model->pickCustomColor(QColor(10, 20, 30));
    EXPECT_FALSE(model->config().selectedMagicPreset);
    EXPECT_FALSE(model->config().selectedGradient);
    EXPECT_FALSE(model->config().selectedSolidColor);
    EXPECT_FALSE(model->config().backgroundImageURL);
    EXPECT_EQ(model->customColor(), QColor(10, 20, 30));
}

TEST_F(ViewModel, ANamedGradientCopiesItsColours) {
    const auto model = makeModel(picture(20, 10));
    EXPECT_EQ(model->gradientPresetIndex(), 0) << "the default comes from the first entry";
    model->selectGradientPreset(4);
    EXPECT_EQ(model->config().gradientConfig, PresetCatalogues::simpleGradientPresets()[4].config);
    EXPECT_EQ(model->config().selectedGradientPreset, PresetCatalogues::simpleGradientPresets()[4]);
    EXPECT_EQ(model->gradientPresetIndex(), 4);
    ASSERT_TRUE(model->set(QStringLiteral("gradientConfig.angle"), 10));
    EXPECT_EQ(model->gradientPresetIndex(), -1) << "it does not look like the preset any more";
    EXPECT_TRUE(model->config().selectedGradientPreset);
    model->selectGradientPreset(4);
    ASSERT_TRUE(model->set(QStringLiteral("gradientConfig.color3"), QColor(Qt::white)));
    EXPECT_EQ(model->gradientPresetIndex(), -1) << "its third colour shows";
    model->selectGradientPreset(0);
    ASSERT_FALSE(model->config().gradientConfig.useThreeColors);
    ASSERT_TRUE(model->set(QStringLiteral("gradientConfig.color3"), QColor(Qt::white)));
    EXPECT_EQ(model->gradientPresetIndex(), 0) << "its third colour does not show";
}

TEST_F(ViewModel, TellsWhereTheSelectedWallpaperStandsWhileItIsTheBackground) {
    addTexture();
    const QUrl sea = QUrl::fromLocalFile(QStringLiteral("/pictures/sea.png"));
    const QUrl sky = QUrl::fromLocalFile(QStringLiteral("/pictures/sky.png"));
    const auto model = makeModel(picture(20, 10));
    int told = 0;
    QObject::connect(model.get(), &ScreenshotEditorViewModel::selectedWallpaperIndexChanged, [&] { ++told; });
    EXPECT_EQ(model->selectedWallpaperIndex(), 0) << "the texture";
    model->mergeWallpapers({{sea, picture(4, 3)}, {sky, picture(4, 3)}});
    EXPECT_EQ(told, 0);
    model->selectWallpaper(sky);
    EXPECT_EQ(model->selectedWallpaperIndex(), 2);
    model->selectMagicPreset(0);
    EXPECT_EQ(model->selectedWallpaperIndex(), -1);
    model->undo();
    EXPECT_EQ(model->selectedWallpaperIndex(), 2);
    model->set(QStringLiteral("padding"), 12);
    EXPECT_EQ(told, 3) << "only when it changes";
}

TEST_F(ViewModel, ASocialPresetCanBeChosenAndCleared) {
    const auto model = makeModel(picture(20, 10));
    model->selectSocialPreset(12);
    EXPECT_EQ(model->config().selectedSocialPreset->platform, QStringLiteral("LinkedIn"));
    EXPECT_EQ(model->socialPresetIndex(), 12) << "by identity: Instagram has a \"Post\" as well";
    model->selectSocialPreset(-1);
    EXPECT_FALSE(model->config().selectedSocialPreset);
    EXPECT_EQ(model->socialPresetIndex(), -1);
}

TEST_F(ViewModel, ABorderStyleBringsItsRadius) {
    const auto model = makeModel(picture(20, 10));
    const std::vector<std::pair<QString, double>> radii{
        {QStringLiteral("sharp"), 0}, {QStringLiteral("round"), 40}, {QStringLiteral("curved"), 20}};
    for (const auto& [style, radius] : radii) {
        model->selectBorderStyle(style);
        EXPECT_EQ(model->borderStyle(), style);
        EXPECT_EQ(model->config().borderRadius, radius);
    }
    model->selectBorderStyle(QStringLiteral("wavy"));
    EXPECT_EQ(model->borderStyle(), QStringLiteral("curved"));
}

TEST_F(ViewModel, TellsOfAChangeOnceAndOfNoChangeNever) {
    const auto model = makeModel(picture(20, 10));
    QSignalSpy changes(model.get(), &ScreenshotEditorViewModel::configChanged);
    EXPECT_TRUE(model->set(QStringLiteral("padding"), 33));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(model->set(QStringLiteral("padding"), 33));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_FALSE(model->set(QStringLiteral("nosuch"), 33));
    EXPECT_EQ(changes.count(), 1);
}

} // namespace
} // namespace framora
