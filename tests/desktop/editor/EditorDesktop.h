#pragma once

#include "desktop/support/VirtualDesktop.h"

#include <QColorSpace>
#include <QFile>
#include <QPainter>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utility>

namespace framora {

/// A virtual desktop with an editor on a known picture, operated by pointer and keys alone.
class EditorDesktop : public testing::Test {
protected:
    static DesktopOptions options(QSize size = {1440, 900}) {
        DesktopOptions options;
        options.size = size;
        return options;
    }

    explicit EditorDesktop(QSize screen = {1440, 900}) : EditorDesktop(options(screen)) {}
    explicit EditorDesktop(const DesktopOptions& options) : desktop(options) {
        picture = QImage(400, 300, QImage::Format_RGB32);
        picture.fill(QColor(240, 240, 240));
        QPainter painter(&picture);
        painter.fillRect(150, 100, 100, 100, QColor(220, 40, 60));
        painter.end();
        picturePath = scratch("picture.png");
        EXPECT_TRUE(picture.save(picturePath));
    }

    QString scratch(const char* name) const { return desktop.scratchPath() + u'/' + QLatin1String(name); }
    DesktopDisplay& display() { return desktop.display(); }

    /// Opens the editor and waits until it is fitted and drawn with its background.
    void open(const QStringList& arguments = {}) {
        const QString pipe = scratch("commands");
        ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        commands.setFileName(pipe);
        host = &desktop.start(QStringLiteral(FRAMORA_EDITOR_HOST),
                              QStringList{picturePath, QStringLiteral("--commands"), pipe} + arguments);
        // Opening waits for the reader.
        ASSERT_TRUE(commands.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        ASSERT_TRUE(waitForLine("first-frame")) << transcript().toStdString();
        ASSERT_TRUE(waitForLine("background")) << transcript().toStdString();
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return window().has_value(); }));
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().focusedWindow() == window()->id; }));
        // The picture is fitted a little after the window came.
        letPass();
    }
    /// Longer than any motion or delay of the editor.
    void letPass() { ask(QStringLiteral("pass"), QStringLiteral("passed")); }
    /// A drag that the window manager takes over, which it does in its own time.
    void dragWindow(const QPoint& from, const QPoint& to) {
        display().moveTo(from);
        letPass();
        display().press();
        letPass();
        display().moveTo((from + to) / 2);
        letPass();
        display().moveTo(to);
        letPass();
        display().release();
        letPass();
    }
    std::optional<DesktopWindow> window() {
        for (const DesktopWindow& each : display().windows())
            if (each.title == QStringLiteral("Framora") && !each.overrideRedirect)
                return each;
        return {};
    }
    bool waitForNoWindow() {
        return VirtualDesktop::waitFor([&] { return !window(); });
    }

    /// What the host has printed so far.
    QString transcript() { return QString::fromUtf8(host->output()); }
    bool waitForLine(const QString& start) {
        return VirtualDesktop::waitFor([&] { return lastLine(start).has_value(); });
    }
    /// The rest of the last line that starts with `start`.
    std::optional<QString> lastLine(const QString& start) {
        const QStringList lines = whole().split(u'\n');
        for (auto line = lines.rbegin(); line != lines.rend(); ++line)
            if (line->startsWith(start))
                return line->mid(start.size()).trimmed();
        return {};
    }
    int lineCount(const QString& start) {
        int count = 0;
        for (const QString& line : whole().split(u'\n'))
            count += line.startsWith(start) ? 1 : 0;
        return count;
    }
    /// The field's last reported value; empty before its first change.
    QString field(const QString& name) {
        return lastLine(QStringLiteral("set %1 ").arg(name)).value_or(QString());
    }
    bool waitForField(const QString& name, const QString& value) {
        return VirtualDesktop::waitFor([&] { return field(name) == value; }, 5000);
    }

    /// Gives the host a command and returns the answer that starts with one of its words.
    QString ask(const QString& command, const QString& answer) {
        const int before = lineCount(answer);
        commands.write(command.toUtf8() + '\n');
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return lineCount(answer) > before; }))
            << command.toStdString();
        return lastLine(answer).value_or(QString());
    }
    /// Where a control stands on the screen, once its layout has come to rest.
    QRect place(const QString& name) {
        QString found;
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            const QString before =
                std::exchange(found, ask(QStringLiteral("where ") + name, QStringLiteral("at ")));
            if (found == before && found != u"nowhere")
                return true;
            letPass();
            return false;
        })) << name.toStdString();
        const QStringList numbers = found.split(u' ');
        if (numbers.size() != 4)
            return {};
        return QRectF(numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
                      numbers[3].toDouble())
            .toAlignedRect()
            .translated(window()->geometry.topLeft());
    }
    void click(const QString& name) { display().click(place(name).center()); }
    /// The name of the control that has the keys.
    QString focus() { return ask(QStringLiteral("focus"), QStringLiteral("focused")); }
    /// Names a file in the file dialog, which is there when `dialog` gives it, and waits until that has gone.
    void answerFileDialog(const std::function<std::optional<DesktopWindow>()>& dialog, const QString& path) {
        ASSERT_TRUE(
            VirtualDesktop::waitFor([&] { return dialog() && display().focusedWindow() == dialog()->id; }));
        // The list of completions opens when a folder has been read. Return may go to it, and an older one
        // than the text leads into another folder.
        const auto answer = [&] {
            display().key({"Control_L", "a"});
            display().type(path);
            display().key({"Return"});
            return VirtualDesktop::waitFor([&] { return !dialog(); }, 2000);
        };
        ASSERT_TRUE(answer() || answer() || answer());
    }
    /// Presses Tab, and waits until it was heard: keys and questions reach the editor on different ways.
    void tab() {
        const QString before = focus();
        display().key({"Tab"});
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return focus() != before; }, 2000)) << before.toStdString();
    }
    /// Presses Tab until the control has the keys.
    void tabTo(const QString& name) {
        for (int i = 0; i < 60; ++i) {
            if (focus() == name)
                return;
            tab();
        }
        FAIL() << name.toStdString() << " is out of Tab's reach";
    }
    /// Until the control of that name has the keys.
    bool waitForFocus(const QString& name) {
        return VirtualDesktop::waitFor([&] { return focus() == name; });
    }
    /// Presses a slider where `fraction` of its range lies.
    void clickSlider(const QString& name, double fraction) { display().click(sliderPoint(name, fraction)); }
    QPoint sliderPoint(const QString& name, double fraction) {
        const QRect area = place(name + QStringLiteral(".slider"));
        return {int(area.x() + 8 + fraction * (area.width() - 16)), area.center().y()};
    }
    /// The preview as it is drawn.
    QImage frame() {
        const QString path = scratch("frame.png");
        EXPECT_EQ(ask(QStringLiteral("frame ") + path, QStringLiteral("done")), QString());
        return pixels(QImage(path));
    }
    /// What Copy and Save give for the style in force.
    QImage finalPicture() {
        const QString path = scratch("final.png");
        EXPECT_EQ(ask(QStringLiteral("final ") + path, QStringLiteral("done")), QString());
        return pixels(QImage(path));
    }
    /// The bare values: pictures compare unequal when only one of them carries its colour space.
    static QImage pixels(const QImage& image) {
        QImage bare = image.convertToFormat(QImage::Format_ARGB32);
        bare.setColorSpace({});
        return bare;
    }

    VirtualDesktop desktop;
    ChildProcess* host = nullptr;
    QFile commands;
    QImage picture;
    QString picturePath;

private:
    /// Without a line that is still being written.
    QString whole() {
        const QString text = transcript();
        return text.left(text.lastIndexOf(u'\n') + 1);
    }
};

} // namespace framora
