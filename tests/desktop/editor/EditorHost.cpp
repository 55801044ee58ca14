// Opens the editor on a picture, as the program does, and tells a test on standard output what happens.
//
//   editor_host PICTURE [--dark] [--still] [--commands FIFO]
//
// Commands come a line each from the named pipe: "where NAME" (the item's frame in the window), "open
// PICTURE", "close", "dark", "light", "frame FILE" (the preview as drawn), "final FILE" (what Copy and Save
// give), "count" (live windows), "focus" (the item that has the keys), "pass" (answers when every motion has
// ended), "quit". Every line printed is one event or answer.

#include "desktop/editor/EditorHostServices.h"
#include "editor/model/ScreenshotEditorViewModel.h"
#include "editor/render/PictureFile.h"
#include "editor/views/EditorSession.h"
#include "editor/views/ScreenshotPreviewCanvas.h"
#include "editor/window/ScreenshotEditorWindow.h"
#include "feedback/ToastManager.h"
#include "platform/Notifications.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QMetaProperty>
#include <QQuickItem>
#include <QQuickView>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

using namespace framora;

namespace {

void say(const QString& line) {
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

/// One field of the style in words; empty for what has no short form.
QString inWords(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<Size>()) {
        const auto size = value.value<Size>();
        return QStringLiteral("%1 %2").arg(size.width).arg(size.height);
    }
    return value.canConvert<QString>() ? value.toString() : QString();
}

/// The visible item of that object name, delegates of views included.
QQuickItem* findItem(QQuickItem* parent, const QString& name) {
    for (QQuickItem* child : parent->childItems()) {
        if (child->objectName() == name && child->isVisible())
            return child;
        if (QQuickItem* found = findItem(child, name))
            return found;
    }
    return nullptr;
}

/// Prints every property of the model that reads as text, when it changes.
class Reporter : public QObject {
public:
    explicit Reporter(ScreenshotEditorViewModel& model) : m_model(model) {
        m_last = read();
        connect(&model, &ScreenshotEditorViewModel::configChanged, this, [this] { report(); });
    }

private:
    QMap<QString, QString> read() const {
        QMap<QString, QString> all;
        const auto add = [&](const QString& prefix, const QMetaObject& record, auto get) {
            for (int i = 0; i < record.propertyCount(); ++i)
                if (const QString text = inWords(get(record.property(i))); !text.isEmpty())
                    all.insert(prefix + QString::fromLatin1(record.property(i).name()), text);
        };
        const ScreenshotStyleConfig& config = m_model.config();
        add({}, ScreenshotStyleConfig::staticMetaObject,
            [&](const QMetaProperty& property) { return property.readOnGadget(&config); });
        add(QStringLiteral("gradientConfig."), SimpleGradientConfig::staticMetaObject,
            [&](const QMetaProperty& property) { return property.readOnGadget(&config.gradientConfig); });
        add({}, ScreenshotEditorViewModel::staticMetaObject,
            [&](const QMetaProperty& property) { return property.read(&m_model); });
        return all;
    }
    void report() {
        const auto now = read();
        for (auto it = now.begin(); it != now.end(); ++it)
            if (m_last.value(it.key()) != it.value())
                say(QStringLiteral("set %1 %2").arg(it.key(), it.value()));
        m_last = now;
    }

    ScreenshotEditorViewModel& m_model;
    QMap<QString, QString> m_last;
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("dark"), QStringLiteral("Dark appearance.")});
    parser.addOption({QStringLiteral("still"), QStringLiteral("No motion.")});
    const QCommandLineOption commands(QStringLiteral("commands"), QStringLiteral("Where commands come from."),
                                      QStringLiteral("fifo"));
    parser.addOption(commands);
    parser.addPositionalArgument(QStringLiteral("picture"), QStringLiteral("What to edit."));
    parser.process(application);

    EditorHostServices services;
    services.appearance.reducedMotion = parser.isSet(QStringLiteral("still"));
    services.appearance.dark = parser.isSet(QStringLiteral("dark"));
    ScreenshotEditorWindow::provide([&] { return services.forWindow(); });
    ScreenshotEditorWindow& editor = ScreenshotEditorWindow::shared();

    std::unique_ptr<Reporter> reporter;
    const auto open = [&](const QString& path) {
        const LoadedPicture picture = loadPicture(path);
        if (!picture) {
            say(QStringLiteral("error ") + picture.error);
            return;
        }
        editor.close();
        editor.setClosing(false);
        QElapsedTimer timer;
        timer.start();
        editor.open(picture.image);
        reporter = std::make_unique<Reporter>(*editor.session()->viewModel());
        QObject::connect(
            editor.editorWindow(), &QQuickWindow::frameSwapped, editor.editorWindow(),
            [timer] { say(QStringLiteral("first-frame %1 ms").arg(timer.elapsed())); },
            static_cast<Qt::ConnectionType>(Qt::DirectConnection | Qt::SingleShotConnection));
        QObject::connect(editor.editorWindow()->rootObject()->findChild<ScreenshotPreviewCanvas*>(),
                         &ScreenshotPreviewCanvas::backgroundLoaded,
                         [] { say(QStringLiteral("background")); });
        say(QStringLiteral("opened %1").arg(editor.editorWindow()->winId()));
    };
    QObject::connect(&editor, &ScreenshotEditorWindow::closed, [&] {
        reporter.reset();
        say(QStringLiteral("closed"));
    });

    const auto obey = [&](const QString& line) {
        const QString command = line.section(u' ', 0, 0);
        const QString argument = line.section(u' ', 1);
        QQuickView* window = editor.editorWindow();
        if (command == u"open") {
            open(argument);
        } else if (command == u"close") {
            editor.close();
        } else if (command == u"dark" || command == u"light") {
            services.appearance.dark = command == u"dark";
            services.notifications.post(notifications::appearanceChanged);
        } else if (command == u"count") {
            say(QStringLiteral("windows %1").arg(QGuiApplication::allWindows().size()));
        } else if (command == u"quit") {
            QCoreApplication::quit();
        } else if (!window) {
            say(QStringLiteral("no-window"));
        } else if (command == u"pass") {
            // Longer than any motion of the views.
            QTimer::singleShot(services.appearance.reducedMotion ? 30 : 250,
                               [] { say(QStringLiteral("passed")); });
        } else if (command == u"where") {
            const QQuickItem* item = findItem(window->contentItem(), argument);
            say(item ? QStringLiteral("at %1 %2 %3 %4")
                           .arg(item->mapToScene({0, 0}).x())
                           .arg(item->mapToScene({0, 0}).y())
                           .arg(item->width())
                           .arg(item->height())
                     : QStringLiteral("at nowhere"));
        } else if (command == u"focus") {
            const QQuickItem* item = window->activeFocusItem();
            say(QStringLiteral("focused ") + (item ? item->objectName() : QString()));
        } else if (command == u"frame") {
            auto* canvas = window->rootObject()->findChild<ScreenshotPreviewCanvas*>();
            say(canvas->frame().save(argument) ? QStringLiteral("done") : QStringLiteral("failed"));
        } else if (command == u"final") {
            const QImage image = editor.session()->viewModel()->renderFinalImage();
            say(image.save(argument) ? QStringLiteral("done") : QStringLiteral("failed"));
        }
    };
    // Opened for writing as well, so that it never ends.
    const int pipe = ::open(QFile::encodeName(parser.value(commands)).constData(), O_RDWR | O_NONBLOCK);
    QSocketNotifier input(pipe >= 0 ? pipe : STDIN_FILENO, QSocketNotifier::Read);
    QByteArray pending;
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char buffer[4096];
        const ssize_t count = read(int(input.socket()), buffer, sizeof buffer);
        if (count <= 0) {
            input.setEnabled(false);
            return;
        }
        pending.append(buffer, count);
        for (qsizetype end; (end = pending.indexOf('\n')) >= 0; pending.remove(0, end + 1))
            obey(QString::fromUtf8(pending.left(end)));
    });

    if (!parser.positionalArguments().isEmpty())
        open(parser.positionalArguments().first());
    return QApplication::exec();
}
