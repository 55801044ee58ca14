#include "render-cli/Arguments.h"

#include "render-cli/FieldValues.h"
#include "render-cli/StyleFieldSetter.h"
#include "render-cli/StyleJson.h"

#include <QFileInfo>

namespace framora {
namespace {

const QStringList& optionNames() {
    static const QStringList names{"-o",        "--output-dir", "--set",   "--text", "--pixel-ratio",
                                   "--preview", "--jobs",       "--quiet", "--help", "--version"};
    return names;
}

/// Whether a file of that name would be taken for a picture in another format than PNG.
bool namesAnotherFormat(const QString& path) {
    static const QStringList others{
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("jpe"),  QStringLiteral("jfif"),
        QStringLiteral("jp2"),  QStringLiteral("jxl"),  QStringLiteral("webp"), QStringLiteral("avif"),
        QStringLiteral("heic"), QStringLiteral("heif"), QStringLiteral("tif"),  QStringLiteral("tiff"),
        QStringLiteral("gif"),  QStringLiteral("bmp"),  QStringLiteral("ico"),  QStringLiteral("tga"),
        QStringLiteral("ppm"),  QStringLiteral("pgm"),  QStringLiteral("pbm"),  QStringLiteral("psd"),
        QStringLiteral("svg"),  QStringLiteral("pdf")};
    return others.contains(QFileInfo(path).suffix().toLower());
}

/// Names between commas, on lines of at most 100 characters that start with two blanks but for the first.
QString wrapped(const QStringList& names) {
    QStringList lines{QString()};
    for (const QString& name : names) {
        if (lines.last().size() + name.size() > 96)
            lines << QString();
        lines.last() += name + (&name == &names.last() ? QString() : QStringLiteral(", "));
    }
    for (QString& line : lines)
        line = line.trimmed();
    return lines.join(QStringLiteral("\n  "));
}

/// A line for each field that takes one name of a few.
QString choiceLines() {
    constexpr int column = 22;
    QStringList lines;
    for (const auto& [field, names] : StyleFieldSetter::choices())
        lines << QStringLiteral("  %1 %2").arg(field.leftJustified(column), names.join(QStringLiteral(", ")));
    return lines.join(u'\n');
}

/// Reads the words one by one into the arguments; stops at the first that is wrong.
class ArgumentReader {
public:
    ArgumentReader(const QStringList& words, const ScreenshotStyleConfig& style) : m_words(words) {
        m_arguments.style = style;
    }

    ParsedArguments read() {
        while (m_error.isEmpty() && m_next < m_words.size() &&
               m_arguments.action == Arguments::Action::render)
            readWord(m_words[m_next++]);
        if (m_error.isEmpty() && m_arguments.action == Arguments::Action::render)
            checkWhole();
        return {.arguments = m_arguments, .error = m_error};
    }

private:
    void readWord(const QString& word) {
        if (m_onlyImages || word == u"-" || !word.startsWith(u'-')) {
            addImage(word);
            return;
        }
        if (word == u"--") {
            m_onlyImages = true;
            return;
        }
        // "--name=value" is "--name value".
        const qsizetype equals = word.startsWith(u"--") ? word.indexOf(u'=') : -1;
        const QString name = equals < 0 ? word : word.left(equals);
        m_inlineValue = equals < 0 ? std::optional<QString>() : word.mid(equals + 1);
        readOption(name == u"--output" ? QStringLiteral("-o")
                   : name == u"-h"     ? QStringLiteral("--help")
                                       : name);
        if (m_error.isEmpty() && m_inlineValue)
            m_error = QStringLiteral("%1 takes no value").arg(name);
    }

    void readOption(const QString& name) {
        if (name == u"-o")
            readOnce(name, m_arguments.output);
        else if (name == u"--output-dir")
            readOnce(name, m_arguments.outputFolder);
        else if (name == u"--set")
            readField();
        else if (name == u"--text")
            readText();
        else if (name == u"--pixel-ratio")
            readPixelRatio();
        else if (name == u"--jobs")
            readJobs();
        else if (name == u"--preview")
            m_arguments.isPreview = true;
        else if (name == u"--quiet")
            m_arguments.isQuiet = true;
        else if (name == u"--help")
            m_arguments.action = Arguments::Action::showHelp;
        else if (name == u"--version")
            m_arguments.action = Arguments::Action::showVersion;
        else
            m_error = QStringLiteral("unknown option '%1'; valid options: %2")
                          .arg(name, optionNames().join(QStringLiteral(", ")));
    }

    std::optional<QString> value(const QString& option) {
        if (m_inlineValue)
            return std::exchange(m_inlineValue, std::nullopt);
        if (m_next < m_words.size())
            return m_words[m_next++];
        m_error = QStringLiteral("%1 needs a value").arg(option);
        return std::nullopt;
    }

    void readOnce(const QString& option, QString& place) {
        const std::optional<QString> text = value(option);
        if (!text)
            return;
        if (text->isEmpty())
            m_error = QStringLiteral("%1 needs a path").arg(option);
        else if (!place.isEmpty())
            m_error = QStringLiteral("%1 is given twice").arg(option);
        else
            place = *text;
    }

    void readField() {
        const std::optional<QString> text = value(QStringLiteral("--set"));
        if (!text)
            return;
        const qsizetype equals = text->indexOf(u'=');
        if (equals < 1) {
            m_error = QStringLiteral("--set needs FIELD=VALUE, not '%1'").arg(*text);
            return;
        }
        m_error = StyleFieldSetter(m_arguments.style).set(text->left(equals), text->mid(equals + 1));
    }

    void readText() {
        const std::optional<QString> text = value(QStringLiteral("--text"));
        if (!text)
            return;
        TextOverlay overlay;
        const QString problem = readTextOverlay(text->toUtf8(), overlay);
        if (problem.isEmpty())
            m_arguments.style.textOverlays.append(overlay);
        else
            m_error = QStringLiteral("--text: %1").arg(problem);
    }

    void readPixelRatio() {
        const std::optional<QString> text = value(QStringLiteral("--pixel-ratio"));
        if (!text)
            return;
        const std::optional<double> ratio = numberFromText(*text);
        if (ratio && *ratio >= 0.1 && *ratio <= 16.0)
            m_arguments.pixelRatio = ratio;
        else
            m_error = QStringLiteral("--pixel-ratio: '%1' is not a number from 0.1 to 16").arg(*text);
    }

    void readJobs() {
        const std::optional<QString> text = value(QStringLiteral("--jobs"));
        if (!text)
            return;
        bool isNumber = false;
        const int jobs = text->toInt(&isNumber);
        if (isNumber && jobs >= 1 && jobs <= 1024)
            m_arguments.jobs = jobs;
        else
            m_error = QStringLiteral("--jobs: '%1' is not a whole number from 1 to 1024").arg(*text);
    }

    void addImage(const QString& word) {
        if (word.isEmpty())
            m_error = QStringLiteral("an image has an empty name");
        else if (word == u"-" && m_arguments.images.contains(word))
            m_error = QStringLiteral("standard input can be read only once");
        else
            m_arguments.images << word;
    }

    void checkWhole() {
        if (m_arguments.images.isEmpty())
            m_error = QStringLiteral("no image is given; try framora-render --help");
        else if (m_arguments.output.isEmpty() && m_arguments.outputFolder.isEmpty())
            m_error = QStringLiteral("say where the picture goes with -o OUT.png or --output-dir DIR");
        else if (!m_arguments.output.isEmpty() && !m_arguments.outputFolder.isEmpty())
            m_error = QStringLiteral("-o and --output-dir exclude each other");
        else if (!m_arguments.output.isEmpty() && m_arguments.images.size() > 1)
            m_error =
                QStringLiteral("-o takes one image; use --output-dir for %1").arg(m_arguments.images.size());
        else if (namesAnotherFormat(m_arguments.output))
            m_error =
                QStringLiteral("-o: pictures are written as PNG only; give '%1' a name that ends in .png")
                    .arg(m_arguments.output);
    }

    const QStringList& m_words;
    qsizetype m_next = 0;
    bool m_onlyImages = false;
    std::optional<QString> m_inlineValue;
    Arguments m_arguments;
    QString m_error;
};

} // namespace

ParsedArguments parseArguments(const QStringList& words, const ScreenshotStyleConfig& style) {
    return ArgumentReader(words, style).read();
}

QString Arguments::helpText() {
    return QStringLiteral(R"(Usage: framora-render IMAGE... (-o OUT.png | --output-dir DIR) [OPTION]...

Dresses screenshots as the Framora editor does and writes PNG files of 144 dpi. IMAGE or OUT.png may be "-" for
standard input or output.

  -o OUT.png             where the picture of a single image goes
  --output-dir DIR       where the pictures of many go, each under its image's name with .png; made when missing;
                         it may not be where one of the images would be replaced
  --set FIELD=VALUE      change the style; may repeat, later ones win
  --text JSON            add a text overlay, an object with any of
                         %1
  --pixel-ratio N        pixels per point of every image, instead of what its file says
  --preview              draw what the editor shows: a checkerboard where nothing is, and the background's grain
  --jobs N               images at the same time; one for each processor when not given
  --quiet                no progress bar; without it there is one on a terminal only
  --help, --version

Fields start at the style of a new editor:
  %2

Values
%3
  switches               true or false
  colours                RGB, RRGGBB or AARRGGBB in hexadecimal, with or without #
  screenshotOffset       WIDTH,HEIGHT
  backgroundImageURL     a path or a file: URL
  selectedGradientPreset, selectedMagicPreset, selectedSocialPreset
                         the name or the position in the list, from 1: Trench, 3, Instagram/Story
  selectedSolidColor     a colour
  selectedGradient       COLOUR,COLOUR...[@ANGLE], 135 degrees when not given
  selectedShadowScene    NAME:COLOUR,COLOUR...
  textOverlays, redactRegions
                         a JSON list
  none                   for every selected... field and backgroundImageURL: no selection
As in the editor, a gradient preset brings its colours along, a magic preset takes the place of the other
selections, the custom colour and the background image, a custom colour that is not clear that of the selections
and the background image, and a background image that of the colour selections.

Exit status: 0 all written; 1 some image failed, the others are written; 2 bad usage, nothing is written.
)")
        .arg(textOverlayMembers().join(QStringLiteral(", ")), wrapped(StyleFieldSetter::fieldNames()),
             choiceLines());
}

} // namespace framora
