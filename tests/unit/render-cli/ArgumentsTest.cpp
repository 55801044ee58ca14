#include "render-cli/Arguments.h"

#include "editor/render/HexColor.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

ParsedArguments parse(const QStringList& words) {
    return parseArguments(words, ScreenshotStyleConfig::shared());
}

void expectError(const QStringList& words, const char* part) {
    const QString error = parse(words).error;
    EXPECT_TRUE(error.contains(QString::fromLatin1(part)))
        << words.join(u' ').toStdString() << " gave: " << error.toStdString();
    EXPECT_FALSE(error.contains(u'\n'));
}

TEST(Arguments, OneImageAndItsOutput) {
    const auto [arguments, error] = parse({"shot.png", "-o", "out.png"});
    EXPECT_EQ(error, QString());
    EXPECT_EQ(arguments.images, QStringList{"shot.png"});
    EXPECT_EQ(arguments.output, "out.png");
    EXPECT_EQ(arguments.style, ScreenshotStyleConfig::shared());
    EXPECT_FALSE(arguments.isPreview);
    EXPECT_FALSE(arguments.isQuiet);
    EXPECT_EQ(arguments.jobs, 0);
    EXPECT_EQ(arguments.pixelRatio, std::nullopt);
}

TEST(Arguments, EveryOptionInEitherForm) {
    const QStringList spaced{"a",         "b",           "--output-dir",  "d", "--set",  "padding=1",
                             "--preview", "--quiet",     "--jobs",        "3", "--text", R"({"text":"x"})",
                             "--set",     "rotation=90", "--pixel-ratio", "2"};
    const QStringList joined{"a",         "--output-dir=d", "--set=padding=1",         "b",
                             "--preview", "--jobs=3",       "--text={\"text\":\"x\"}", "--set=rotation=90",
                             "--quiet",   "--pixel-ratio=2"};
    for (const QStringList& words : {spaced, joined}) {
        const auto [arguments, error] = parse(words);
        EXPECT_EQ(error, QString()) << error.toStdString();
        EXPECT_EQ(arguments.images, QStringList({"a", "b"}));
        EXPECT_EQ(arguments.outputFolder, "d");
        EXPECT_EQ(arguments.style.padding, 1.0);
        EXPECT_EQ(arguments.style.rotation, 90.0);
        ASSERT_EQ(arguments.style.textOverlays.size(), 1);
        EXPECT_EQ(arguments.style.textOverlays[0].text, "x");
        EXPECT_EQ(arguments.pixelRatio, 2.0);
        EXPECT_EQ(arguments.jobs, 3);
        EXPECT_TRUE(arguments.isPreview);
        EXPECT_TRUE(arguments.isQuiet);
    }
}

TEST(Arguments, LaterFieldsWinAndOverlaysAddUp) {
    const auto [arguments, error] = parse({"a", "-o", "b", "--set", "padding=1", "--set", "padding=2",
                                           "--text", R"({"text":"1"})", "--text", R"({"text":"2"})"});
    EXPECT_EQ(error, QString());
    EXPECT_EQ(arguments.style.padding, 2.0);
    ASSERT_EQ(arguments.style.textOverlays.size(), 2);
    EXPECT_EQ(arguments.style.textOverlays[1].text, "2");
    EXPECT_NE(arguments.style.textOverlays[0].id, arguments.style.textOverlays[1].id);
}

TEST(Arguments, ADashIsAnImageAndWordsAfterTwoDashesAreImages) {
    EXPECT_EQ(parse({"-", "-o", "-"}).arguments.images, QStringList{"-"});
    EXPECT_EQ(parse({"-o", "x", "--", "--quiet"}).arguments.images, QStringList{"--quiet"});
    expectError({"-", "-", "--output-dir", "d"}, "only once");
}

TEST(Arguments, HelpAndVersionNeedNothingElse) {
    EXPECT_EQ(parse({"--help"}).arguments.action, Arguments::Action::showHelp);
    EXPECT_EQ(parse({"-h"}).error, QString());
    EXPECT_EQ(parse({"--version"}).arguments.action, Arguments::Action::showVersion);
}

TEST(Arguments, BadUsageIsNamed) {
    expectError({}, "no image");
    expectError({"a"}, "-o OUT.png");
    expectError({"a", "-o", "b", "--output-dir", "c"}, "exclude");
    expectError({"a", "b", "-o", "c"}, "--output-dir");
    expectError({"a", "-o"}, "needs a value");
    expectError({"a", "-o", ""}, "needs a path");
    expectError({"a", "-o", "b", "-o", "c"}, "twice");
    expectError({"a", "-o", "b", "--colour"}, "valid options: -o, --output-dir, --set");
    expectError({"a", "-o", "b", "-x"}, "unknown option '-x'");
    expectError({"a", "-o", "b", "--quiet=yes"}, "takes no value");
    expectError({"a", "-o", "b", "--set", "padding"}, "FIELD=VALUE");
    expectError({"a", "-o", "b", "--set", "=3"}, "FIELD=VALUE");
    expectError({"a", "-o", "b", "--set", "paddin=3"}, "valid fields: mockupStyle");
    expectError({"", "-o", "b"}, "empty");
    for (const char* ratio : {"0", "-1", "nan", "inf", "17", "x", "", "2x", " 2"})
        expectError({"a", "-o", "b", "--pixel-ratio", ratio}, "--pixel-ratio");
    for (const char* jobs : {"0", "-1", "1.5", "x", "", "1025"})
        expectError({"a", "-o", "b", "--jobs", jobs}, "--jobs");
    expectError({"a", "-o", "b", "--text", "{"}, "--text: not JSON");
}

TEST(Arguments, AnOutputNamedForAnotherFormatIsRefused) {
    for (const char* name : {"x.jpg", "x.JPEG", "a/b.webp", "x.tif", "x.tiff", "x.gif", "x.bmp", "x.heic",
                             "x.avif", ".jpg", "x.png.jpg"})
        expectError({"a", "-o", name}, ".png");
    for (const char* name :
         {"x.png", "x.PNG", "x", "x.out", "jpg", "x.jpg.png", "x.jpg/y", "-", "/dev/stdout"})
        EXPECT_EQ(parse({"a", "-o", name}).error, QString()) << name;
}

TEST(Arguments, TheHelpNamesEveryFieldAndOption) {
    const QString help = Arguments::helpText();
    for (const char* word :
         {"--set", "--text", "--pixel-ratio", "--preview", "--jobs", "--quiet", "--output-dir",
          "gradientConfig.angle", "screenshotOffset", "isBlurred", "selectedShadowScene"})
        EXPECT_TRUE(help.contains(QString::fromLatin1(word))) << word;
    // Nobody guesses names.
    for (const char* line :
         {"mockupStyle            defaultStyle, glassEffect, border", "gradientConfig.style   linear, radial",
          "backgroundType         transparent, color, gradient, image"})
        EXPECT_TRUE(help.contains(QString::fromLatin1(line))) << line;
    for (const QString& line : help.split(u'\n'))
        EXPECT_LE(line.size(), 120) << line.toStdString();
    EXPECT_FALSE(help.contains(u'%'));
}

} // namespace
} // namespace framora
