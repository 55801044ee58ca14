#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"
#include "render-cli/DefaultStyle.h"
#include "render-cli/StyleFieldSetter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The command itself, run as a script runs it, in a folder of its own without a display.
class FramoraRender : public testing::Test {
protected:
    struct Outcome {
        int status = -1;
        QByteArray output;
        QByteArray errors;
    };

    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        QImage image(120, 80, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgb(2 * x, 3 * y, 200 - x));
        m_image = image;
        write("shot.png", encodePng(image, 72.0));
    }

    Outcome run(const QStringList& words, const QByteArray& input = {}) {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral(FRAMORA_RENDER), words);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray read(const QString& name) {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void expectOneLine(const Outcome& outcome, int status, const char* part) {
        EXPECT_EQ(outcome.status, status) << outcome.errors.constData();
        EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
        EXPECT_TRUE(outcome.errors.startsWith("framora-render: ")) << outcome.errors.constData();
        EXPECT_TRUE(outcome.errors.contains(part)) << outcome.errors.constData();
        EXPECT_TRUE(outcome.output.isEmpty());
    }

    QTemporaryDir m_folder;
    QImage m_image;
};

TEST_F(FramoraRender, ItWritesWhatTheEditorExportsAndSaysNothing) {
    const Outcome outcome = run({"shot.png", "-o", "out.png"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
    EXPECT_TRUE(outcome.output.isEmpty());
    EXPECT_TRUE(outcome.errors.isEmpty()) << outcome.errors.constData();

    const ScreenshotStyleConfig style = defaultStyle(QFileInfo(QStringLiteral(FRAMORA_RENDER)).path());
    ASSERT_TRUE(style.backgroundImageURL) << "the packaged texture";
    EXPECT_EQ(read("out.png"), encodePng(renderComposition(m_image, style), 144.0));
    const LoadedPicture picture = loadPicture(path("out.png"));
    EXPECT_EQ(picture.image.size(), QSize(2 * (120 + 160), 2 * (80 + 160)));
    EXPECT_EQ(picture.image.devicePixelRatio(), 2.0) << "144 dpi";
}

TEST_F(FramoraRender, TheExamplesOfEveryFieldAreTaken) {
    const Outcome outcome = run({"shot.png",
                                 "-o",
                                 "out.png",
                                 "--set",
                                 "backgroundType=gradient",
                                 "--set",
                                 "gradientConfig.angle=90",
                                 "--set",
                                 "gradientConfig.color1=ff8800",
                                 "--set",
                                 "screenshotOffset=10,-5",
                                 "--set",
                                 "showMockup=false",
                                 "--set",
                                 "borderColor=2d2d2d",
                                 "--set",
                                 "backgroundImageURL=shot.png",
                                 "--set",
                                 "selectedSocialPreset=Instagram/Story",
                                 "--set",
                                 "selectedGradientPreset=Trench",
                                 "--set",
                                 "selectedMagicPreset=3",
                                 "--set",
                                 "selectedSolidColor=ff0000",
                                 "--set",
                                 "selectedGradient=ff0000,0000ff@90",
                                 "--set",
                                 "selectedShadowScene=Name:ffffff,000000",
                                 "--text",
                                 R"({"text":"Hello","position":[20,20]})",
                                 "--text",
                                 R"({"text":"again"})"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
    EXPECT_TRUE(loadPicture(path("out.png")));
}

TEST_F(FramoraRender, AFieldChangesThePicture) {
    ASSERT_EQ(run({"shot.png", "-o", "a.png", "--set", "backgroundType=color"}).status, 0);
    const QImage white = loadPicture(path("a.png")).image;
    EXPECT_EQ(white.pixel(2, 2), 0xffffffffu);
    ASSERT_EQ(run({"shot.png", "-o", "b.png", "--set", "backgroundType=color", "--set",
                   "selectedSolidColor=ff8000", "--set", "padding=10"})
                  .status,
              0);
    const QImage orange = loadPicture(path("b.png")).image;
    EXPECT_EQ(orange.size(), QSize(2 * 140, 2 * 100));
    EXPECT_EQ(orange.pixel(2, 2), 0xffff8000u);
}

TEST_F(FramoraRender, EveryFieldThatIsDrawnChangesThePictureAndTheOthersDoNot) {
    const QStringList framed{"mockupStyle=border", "backgroundType=gradient"};
    const QStringList coloured{"backgroundType=color"};
    const QStringList shaded = framed + QStringList{"selectedShadowScene=Name:ffffff,000000"};
    const QStringList redacted = framed + QStringList{"redactEnabled=true"};
    struct Case {
        QString value = "12.5";
        QStringList base = {}; ///< What shows it; `framed` when empty.
        bool isDrawn = true;
        bool inPreview = false;
    };
    const Case carried{.value = "12.5", .base = {}, .isDrawn = false};
    const QHash<QString, Case> cases{
        {"mockupStyle", {"glassEffect"}},
        {"showMockup", {"false"}},
        {"borderColor", {"ffcc00"}},
        {"borderStyle", {"round", {}, false}}, // the radius says
        {"imageScale", {"50"}},
        {"screenshotOffset", {"10,5"}},
        {"perspective", carried},
        {"backgroundType", {"color"}},
        {"selectedMagicPreset", {"3", coloured}},
        {"selectedShadowScene", {"Name:ffffff,000000"}},
        {"selectedSolidColor", {"ff0000", coloured}},
        {"selectedGradient", {"ff0000,0000ff@90", coloured}},
        {"backgroundImageURL", {"shot.png", {"backgroundType=image"}}},
        {"customColor", {"ff0000", coloured}},
        {"gradientConfig.style", {"radial"}},
        {"gradientConfig.color1", {"abcdef"}},
        {"gradientConfig.color2", {"abcdef"}},
        {"gradientConfig.color3", {"abcdef", framed + QStringList{"gradientConfig.useThreeColors=true"}}},
        {"gradientConfig.useThreeColors", {"true"}},
        {"gradientConfig.noiseAmount", {"50", {}, true, true}},
        {"selectedGradientPreset", {"Trench"}},
        {"backgroundNoise", carried},
        {"backgroundBlur", carried},
        {"shadowSceneMode", {"overlay", shaded}},
        {"shadowSceneOpacity", {"30", shaded}},
        {"textOverlays", {R"([{"text":"again"}])"}},
        {"redactEnabled", {"true", framed + QStringList{R"(redactRegions=[{"rect":[1,2,30,40]}])"}, false}},
        {"redactStyle", {"pixelate", redacted, false}},
        {"redactRegions", {R"([{"rect":[1,2,30,40]}])", redacted, false}},
        {"selectedSocialPreset", {"Instagram/Story"}},
        {"zoom", {"50", {}, false}},
        {"scale", {"0.5"}},
    };
    const auto drawn = [this](const QStringList& settings, bool inPreview) {
        QStringList words{"shot.png", "-o", "-"};
        for (const QString& setting : settings)
            words << "--set" << setting;
        if (inPreview)
            words << "--preview";
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 0) << outcome.errors.constData();
        return outcome.output;
    };
    QHash<QStringList, QByteArray> without;
    for (const QString& field : StyleFieldSetter::fieldNames()) {
        const Case one = cases.value(field);
        const QStringList base = one.base.isEmpty() ? framed : one.base;
        const QStringList key = base + QStringList(one.inPreview ? "--preview" : "");
        if (!without.contains(key))
            without.insert(key, drawn(base, one.inPreview));
        const QByteArray with = drawn(base + QStringList(field + u'=' + one.value), one.inPreview);
        EXPECT_EQ(with != without.value(key), one.isDrawn) << field.toStdString();
    }
}

TEST_F(FramoraRender, ATextIsTheSameByEitherOption) {
    const QStringList words{"shot.png", "-o", "-"};
    const QByteArray bare = run(words).output;
    const QByteArray byText = run(words + QStringList{"--text", R"({"text":"A"})"}).output;
    EXPECT_NE(byText, bare);
    EXPECT_EQ(run(words + QStringList{"--set", R"(textOverlays=[{"text":"A"}])"}).output, byText);
    EXPECT_EQ(run(words + QStringList{R"(--set=textOverlays=[{"text":"A"}])"}).output, byText);
}

TEST_F(FramoraRender, ItReplacesNoneOfItsImagesInAFolder) {
    const QByteArray before = read("shot.png");
    expectOneLine(run({"shot.png", "--output-dir", "."}), 2, "'shot.png' would be replaced");
    EXPECT_EQ(read("shot.png"), before);
    EXPECT_EQ(run({"shot.png", "-o", "shot.png"}).status, 0) << "where it is asked for by name";
    EXPECT_NE(read("shot.png"), before);
}

TEST_F(FramoraRender, ThePixelRatioComesFromTheFileOrTheOption) {
    write("twice.png", encodePng(m_image, 144.0));
    ASSERT_EQ(run({"twice.png", "-o", "a.png"}).status, 0);
    EXPECT_EQ(loadPicture(path("a.png")).image.size(), QSize(2 * (60 + 160), 2 * (40 + 160)));
    ASSERT_EQ(run({"twice.png", "-o", "b.png", "--pixel-ratio", "1"}).status, 0);
    EXPECT_EQ(loadPicture(path("b.png")).image.size(), QSize(2 * (120 + 160), 2 * (80 + 160)));
}

TEST_F(FramoraRender, ThePreviewShowsTheCheckerboardAndTheExportNothing) {
    const QStringList words{"shot.png", "--set", "backgroundType=transparent"};
    ASSERT_EQ(run(words + QStringList{"-o", "export.png"}).status, 0);
    EXPECT_EQ(loadPicture(path("export.png")).image.pixel(2, 2), 0u);
    ASSERT_EQ(run(words + QStringList{"-o", "preview.png", "--preview"}).status, 0);
    const QImage preview = loadPicture(path("preview.png")).image;
    EXPECT_EQ(qAlpha(preview.pixel(2, 2)), 255);
    EXPECT_NE(preview.pixel(2, 2), preview.pixel(2 + 24, 2)) << "squares of 12 points";
    EXPECT_EQ(preview.pixel(2, 2), preview.pixel(2 + 24, 2 + 24));
}

TEST_F(FramoraRender, ADashIsStandardInputAndOutput) {
    ASSERT_EQ(run({"shot.png", "-o", "out.png"}).status, 0);
    const Outcome outcome = run({"-", "-o", "-"}, read("shot.png"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, read("out.png"));
    expectOneLine(run({"-", "-o", "-"}, "no picture"), 1, "standard input: not a picture");
}

TEST_F(FramoraRender, OfManyTheBadAreNamedAndTheOthersWritten) {
    QStringList words{"--output-dir", "made/for it"};
    for (int i = 0; i < 12; ++i) {
        const QString name = QStringLiteral("%1.png").arg(i);
        write(name, i == 5 ? read("shot.png").chopped(40) : read("shot.png"));
        words << name;
    }
    words << "missing.png";
    const Outcome outcome = run(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.isEmpty());
    EXPECT_EQ(outcome.errors.count('\n'), 2) << outcome.errors.constData();
    EXPECT_TRUE(outcome.errors.contains("framora-render: 5.png: the picture is damaged or cut off\n"));
    EXPECT_TRUE(outcome.errors.contains("framora-render: missing.png: no such file\n"));
    EXPECT_EQ(QDir(path("made/for it")).entryList(QDir::Files | QDir::Hidden).size(), 11);
    ASSERT_EQ(run({"shot.png", "-o", "alone.png"}).status, 0);
    for (const int i : {0, 4, 6, 11})
        EXPECT_EQ(read(QStringLiteral("made/for it/%1.png").arg(i)), read("alone.png"));
}

TEST_F(FramoraRender, TheNumberOfJobsDoesNotChangeAByte) {
    QStringList images;
    for (int i = 0; i < 6; ++i) {
        images << QStringLiteral("%1.png").arg(i);
        write(images.last(), read("shot.png"));
    }
    const QStringList style{"--set",        "rotation=17", "--set",
                            "rotationX=25", "--set",       "backgroundType=gradient"};
    for (const char* jobs : {"1", "2", "5"})
        ASSERT_EQ(run(images + style + QStringList{"--jobs", jobs, "--output-dir", jobs}).status, 0);
    for (const QString& image : images) {
        EXPECT_EQ(read("1/" + image), read("2/" + image));
        EXPECT_EQ(read("1/" + image), read("5/" + image));
        EXPECT_EQ(read("1/" + image), read("1/0.png"));
    }
}

TEST_F(FramoraRender, BadUsageWritesNothingAndListsWhatIsValid) {
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "foo=1"}), 2, "valid fields: mockupStyle, ");
    expectOneLine(run({"shot.png", "-o", "out.png", "--foo"}), 2, "valid options: -o, ");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "backgroundType=foo"}), 2,
                  "transparent, color, gradient, image");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "padding=nan"}), 2, "'nan' is not a number");
    expectOneLine(run({"shot.png", "-o", "out.png", "--text", R"({"foo":1})"}), 2, "valid members: id, text");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "foo\n=1"}), 2, "unknown field 'foo?'");
    expectOneLine(run({"shot.png", "sub/shot.jpg", "--output-dir", "d"}), 2, "shot.png");
    expectOneLine(run({}), 2, "no image");
    write("text.txt", "no picture");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "backgroundImageURL=text.txt"}), 2, "text.txt");
    EXPECT_FALSE(QFile::exists(path("out.png")));
    EXPECT_FALSE(QFile::exists(path("d")));
}

TEST_F(FramoraRender, WhatCannotBeReadOrWrittenIsOneLine) {
    write("file", "x");
    expectOneLine(run({"missing.png", "-o", "out.png"}), 1, "missing.png: no such file");
    expectOneLine(run({".", "-o", "out.png"}), 1, "folder");
    expectOneLine(run({"shot.png", "-o", "file/out.png"}), 1, "file/out.png: cannot be written");
    expectOneLine(run({"shot.png", "-o", "/proc/out.png"}), 1, "/proc/out.png: cannot be written");
    expectOneLine(run({"shot.png", "--output-dir", "file/d"}), 1, "not a folder that can be written to");
    expectOneLine(run({"shot.png", "--output-dir", "file"}), 1, "not a folder that can be written to");
    write("bad\nname.png", "no picture");
    expectOneLine(run({"bad\nname.png", "-o", "out.png"}), 1, "bad?name.png");
    expectOneLine(run({"/dev/zero", "-o", "out.png"}), 1, "larger than any picture");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "padding=1e12"}), 1, "cannot be drawn");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "scale=0"}), 1, "cannot be drawn");
    expectOneLine(run({"shot.png", "-o", "out.png", "--set", "padding=-1e308"}), 1, "cannot be drawn");
    EXPECT_FALSE(QFile::exists(path("out.png")));
}

TEST_F(FramoraRender, AFailureLeavesTheEarlierOutput) {
    write("out.png", "earlier");
    EXPECT_EQ(run({"missing.png", "-o", "out.png"}).status, 1);
    EXPECT_EQ(run({"shot.png", "-o", "out.png", "--set", "scale=0"}).status, 1);
    EXPECT_EQ(read("out.png"), "earlier");
    EXPECT_EQ(run({"shot.png", "-o", "out.png"}).status, 0);
    EXPECT_TRUE(loadPicture(path("out.png")));
}

TEST_F(FramoraRender, KilledAtAnyMomentItLeavesAWholePicture) {
    ASSERT_EQ(run({"shot.png", "-o", "first.png"}).status, 0);
    ASSERT_EQ(run({"shot.png", "-o", "second.png", "--set", "rotation=30"}).status, 0);
    const QByteArray first = read("first.png");
    const QByteArray second = read("second.png");
    write("out.png", first);
    for (int attempt = 0; attempt < 60; ++attempt) {
        const bool isTurned = attempt % 2 == 0;
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QStringLiteral(FRAMORA_RENDER),
                      {"shot.png", "-o", "out.png", "--set", isTurned ? "rotation=30" : "rotation=0"});
        ASSERT_TRUE(process.waitForStarted());
        process.waitForFinished(attempt * 2);
        process.kill();
        process.waitForFinished();
        const QByteArray now = read("out.png");
        ASSERT_TRUE(now == first || now == second)
            << "after " << attempt * 2 << " ms: " << now.size() << " bytes";
    }
}

TEST_F(FramoraRender, InterruptedItEndsWhatItWritesAndCountsTheRestAsFailed) {
    QStringList words{"--jobs", "1", "--output-dir", "d"};
    for (int i = 0; i < 400; ++i) {
        words << QStringLiteral("%1.png").arg(i);
        write(words.last(), read("shot.png"));
    }
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.start(QStringLiteral(FRAMORA_RENDER), words);
    ASSERT_TRUE(process.waitForStarted());
    while (!QFile::exists(path("d/1.png")) && process.state() == QProcess::Running)
        process.waitForFinished(1);
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError();
    EXPECT_EQ(errors.count('\n'), 1) << errors.constData();
    EXPECT_TRUE(errors.contains("interrupted")) << errors.constData();
    const QStringList written = QDir(path("d")).entryList(QDir::Files | QDir::Hidden);
    EXPECT_LT(written.size(), 400);
    for (const QString& name : written)
        EXPECT_TRUE(loadPicture(path("d/" + name))) << name.toStdString();
}

TEST_F(FramoraRender, AFullDiskIsOneLine) {
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(QStringLiteral(FRAMORA_RENDER), {"shot.png", "-o", "-"});
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError();
    EXPECT_EQ(errors.count('\n'), 1);
    EXPECT_TRUE(errors.contains("standard output: cannot be written")) << errors.constData();
}

TEST_F(FramoraRender, AFileThatMayNotGrowIsOneLineAndLeavesTheEarlierOne) {
    write("out.png", "earlier");
    const QStringList before = QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.start("bash", {"-c", R"(trap "" XFSZ; ulimit -f 1; exec "$@")", "bash", FRAMORA_RENDER,
                           "shot.png", "-o", "out.png"});
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitCode(), 1);
    const QByteArray errors = process.readAllStandardError();
    EXPECT_EQ(errors.count('\n'), 1) << errors.constData();
    EXPECT_TRUE(errors.contains("out.png: cannot be written: File too large")) << errors.constData();
    EXPECT_EQ(read("out.png"), "earlier");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), before);
}

TEST_F(FramoraRender, NumbersThatNoEditorGivesNeverCrashIt) {
    for (const char* field : {"mockupBorderSize", "borderRadius", "rotation", "imageScale", "rotationX",
                              "rotationY", "perspective", "gradientConfig.angle", "gradientConfig.saturation",
                              "gradientConfig.brightness", "padding", "zoom", "scale"})
        for (const char* value : {"0", "-1", "1e-300", "-1e9", "1e9", "1.7e308", "-1.7e308", "90"}) {
            const QString assignment = QString::fromLatin1(field) + u'=' + QString::fromLatin1(value);
            const Outcome outcome =
                run({"shot.png", "-o", "out.png", "--set", "mockupStyle=border", "--set",
                     "backgroundType=gradient", "--set", "screenshotOffset=1e9,-1e300", "--set", assignment});
            EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << assignment.toStdString();
            EXPECT_EQ(outcome.errors.count('\n'), outcome.status) << outcome.errors.constData();
        }
}

TEST_F(FramoraRender, HelpAndVersionGoToStandardOutput) {
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.startsWith("Usage: framora-render IMAGE..."));
    EXPECT_TRUE(help.errors.isEmpty());
    const Outcome version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.output.startsWith("framora-render "));
}

TEST_F(FramoraRender, ItLoadsNeitherQuickNorWidgets) {
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {QStringLiteral(FRAMORA_RENDER)});
    ASSERT_TRUE(ldd.waitForFinished(30'000));
    const QByteArray libraries = ldd.readAllStandardOutput();
    ASSERT_TRUE(libraries.contains("libQt6Core"));
    for (const char* library : {"libQt6Widgets", "libQt6Quick", "libQt6Qml"})
        EXPECT_FALSE(libraries.contains(library)) << library;
}

} // namespace
} // namespace framora
