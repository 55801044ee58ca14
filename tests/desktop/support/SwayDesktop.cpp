#include "desktop/support/SwayDesktop.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <functional>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

/// The user "nobody" of every Linux; it needs no entry in any list.
constexpr unsigned ordinaryUser = 65534;

// Keys and the pointer reach programs alone: nothing is bound.
constexpr auto configuration = R"(swaybg_command -
default_border none
default_floating_border none
for_window [app_id=".*"] floating enable
for_window [shell="xwayland"] floating enable
focus_on_window_activation focus
seat * xcursor_theme unseen
)";

/// A cursor file of one transparent pixel.
QByteArray transparentCursor() {
    constexpr quint32 image = 0xfffd0002;
    constexpr quint32 nominalSize = 24;
    constexpr quint32 words[] = {0x72756358 /* "Xcur" */,
                                 16,
                                 0x10000,
                                 1,
                                 image,
                                 nominalSize,
                                 28,
                                 36,
                                 image,
                                 nominalSize,
                                 1,
                                 1,
                                 1,
                                 0,
                                 0,
                                 0,
                                 0};
    return QByteArray(reinterpret_cast<const char*>(words), sizeof words);
}

QRect rectangle(const QJsonValue& value) {
    return {value[QStringLiteral("x")].toInt(), value[QStringLiteral("y")].toInt(),
            value[QStringLiteral("width")].toInt(), value[QStringLiteral("height")].toInt()};
}

void collect(const QJsonObject& node, const QString& output, std::vector<SwayWindow>& windows) {
    const QString type = node[QStringLiteral("type")].toString();
    const QString here = type == QStringLiteral("output") ? node[QStringLiteral("name")].toString() : output;
    if (node.contains(QStringLiteral("pid")) && node[QStringLiteral("pid")].toInteger() > 0) {
        SwayWindow window;
        window.id = node[QStringLiteral("id")].toInteger();
        window.pid = node[QStringLiteral("pid")].toInteger();
        window.title = node[QStringLiteral("name")].toString();
        window.appId = node[QStringLiteral("app_id")].toString();
        window.xClass = node[QStringLiteral("window_properties")][QStringLiteral("class")].toString();
        const QRect body = rectangle(node[QStringLiteral("rect")]);
        const QRect decoration = rectangle(node[QStringLiteral("deco_rect")]);
        window.frame = decoration.isEmpty() ? body : body.united(decoration.translated(body.topLeft()));
        window.content = rectangle(node[QStringLiteral("window_rect")]).translated(body.topLeft());
        window.output = here;
        window.focused = node[QStringLiteral("focused")].toBool();
        window.fullScreen = node[QStringLiteral("fullscreen_mode")].toInt() != 0;
        window.visible = node[QStringLiteral("visible")].toBool();
        windows.push_back(window);
    }
    for (const auto* list : {"nodes", "floating_nodes"})
        for (const QJsonValue& child : node[QLatin1String(list)].toArray())
            collect(child.toObject(), here, windows);
}

} // namespace

SwayDesktop::SwayDesktop(const SwayOptions& options) : DesktopSession(QStringLiteral("wayland")) {
    m_environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("sway"));
    startCompositor(options);
    if (options.sessionBus)
        startBus();
    if (options.accessibility)
        startAccessibility();
    m_input = std::make_unique<VirtualInput>(m_waylandDisplay, [this] {
        QRect all;
        for (int index = 0; index < int(m_outputs.size()); ++index)
            all |= outputArea(index);
        return QSizeF(all.size());
    });
}

SwayDesktop::~SwayDesktop() {
    m_input.reset();
    m_ipc.reset();
}

QString SwayDesktop::swayPath(const char* name) const {
    return m_folder.filePath(QStringLiteral("sway/")) + QLatin1String(name);
}

void SwayDesktop::startCompositor(const SwayOptions& options) {
    QProcessEnvironment environment = m_environment;
    for (const char* name : {"home", "runtime"})
        QDir().mkpath(swayPath(name));
    writeFile(swayPath("config"),
              QByteArray(configuration) + (options.xwayland ? "xwayland enable\n" : "xwayland disable\n"));
    // Without a graphics card the compositor draws the pointer into the picture itself. Its own one is
    // unseen, as a card's is in screenshots.
    writeFile(swayPath("cursors/unseen/cursors/left_ptr"), transparentCursor());
    environment.insert(QStringLiteral("XCURSOR_PATH"), swayPath("cursors"));
    environment.insert(QStringLiteral("HOME"), swayPath("home"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), swayPath("home"));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), swayPath("home"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), swayPath("home"));
    environment.insert(QStringLiteral("TMPDIR"), swayPath("home"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), swayPath("runtime"));
    environment.insert(QStringLiteral("SWAYSOCK"), swayPath("runtime/sway.sock"));
    environment.insert(QStringLiteral("WLR_BACKENDS"), QStringLiteral("headless"));
    environment.insert(QStringLiteral("WLR_RENDERER"), QStringLiteral("pixman"));
    environment.insert(QStringLiteral("WLR_LIBINPUT_NO_DEVICES"), QStringLiteral("1"));
    environment.insert(QStringLiteral("WLR_HEADLESS_OUTPUTS"), QStringLiteral("0"));
    ChildProcess::Options asUser;
    if (::geteuid() == 0) {
        // sway does not run as root. Its user may walk through our folder, and owns its own in it.
        asUser.user = ordinaryUser;
        ::chmod(m_folder.path().toUtf8().constData(), 0711);
        for (const char* name : {"home", "runtime"})
            if (::chown(swayPath(name).toUtf8().constData(), ordinaryUser, ordinaryUser) != 0)
                throw std::runtime_error("no folder for sway's user");
        // Whoever makes the folder of the X sockets owns it, and an X server of root's wants it to be root's.
        constexpr auto sockets = "/tmp/.X11-unix";
        if (::mkdir(sockets, 01777) == 0)
            ::chmod(sockets, 01777);
    }
    ::chmod(swayPath("runtime").toUtf8().constData(), 0700);
    m_children.push_back(std::make_unique<ChildProcess>(
        QStringLiteral("sway"), QStringList{QStringLiteral("-c"), swayPath("config")}, environment, asUser));
    ChildProcess& sway = *m_children.back();
    const QString ipc = swayPath("runtime/sway.sock");
    requireSoon("compositor", [&] {
        if (!sway.isRunning())
            throw std::runtime_error("sway ended: " + sway.output().toStdString());
        const auto sockets =
            QDir(swayPath("runtime")).entryList({QStringLiteral("wayland-?")}, QDir::System | QDir::Files);
        if (sockets.isEmpty())
            return false;
        m_waylandDisplay = swayPath("runtime/") + sockets.front();
        try {
            // The socket is there a moment before somebody listens.
            m_ipc = std::make_unique<SwayIpc>(ipc);
        } catch (const std::runtime_error&) {
            return false;
        }
        return true;
    });
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"), m_waylandDisplay);
    m_environment.insert(QStringLiteral("SWAYSOCK"), ipc);

    for (const SwayOutput& output : options.outputs) {
        m_outputs.push_back(QStringLiteral("HEADLESS-%1").arg(m_outputs.size() + 1));
        command(QStringLiteral("create_output"));
        command(QStringLiteral("output %1 resolution %2x%3 scale %4 transform %5 position %6 %7")
                    .arg(m_outputs.back())
                    .arg(output.mode.width())
                    .arg(output.mode.height())
                    .arg(output.scale)
                    .arg(output.transform)
                    .arg(output.position.x())
                    .arg(output.position.y()));
        requireSoon("output",
                    [&] { return outputArea(int(m_outputs.size()) - 1).topLeft() == output.position; });
    }
    if (options.xwayland) {
        // The X display's number is told to what sway starts alone.
        command(QStringLiteral("exec printenv DISPLAY > '%1'").arg(swayPath("home/display")));
        QFile told(swayPath("home/display"));
        QByteArray display;
        requireSoon("X server's name", [&] {
            if (told.open(QIODevice::ReadOnly))
                display = told.readAll();
            told.close();
            return display.endsWith('\n');
        });
        m_environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(display.trimmed()));
        if (asUser.user) {
            // The X server is that user's and lets in nobody else by itself.
            environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(display.trimmed()));
            ChildProcess opener(QStringLiteral("xhost"), {QStringLiteral("+local:")}, environment, asUser);
            if (!opener.waitForExit() || opener.exitCode() != 0)
                throw std::runtime_error("the X server on sway stays closed: " +
                                         opener.output().toStdString());
        }
    }
}

QString SwayDesktop::outputName(int index) const {
    return m_outputs.at(std::size_t(index));
}

QRect SwayDesktop::outputArea(int index) {
    for (const QJsonValue& output : m_ipc->request(SwayIpc::Request::outputs).array())
        if (output[QStringLiteral("name")].toString() == outputName(index))
            return rectangle(output[QStringLiteral("rect")]);
    return {};
}

QImage SwayDesktop::screenshot(int output) {
    const QByteArray picture =
        run(QStringLiteral("grim"), {QStringLiteral("-t"), QStringLiteral("ppm"), QStringLiteral("-o"),
                                     outputName(output), QStringLiteral("-")});
    return QImage::fromData(picture, "PPM").convertToFormat(QImage::Format_RGB32);
}

QImage SwayDesktop::settledScreenshot(int output) {
    return settled([&] { return screenshot(output); });
}

void SwayDesktop::command(const QString& text) {
    const QJsonDocument answer = m_ipc->request(SwayIpc::Request::command, text.toUtf8());
    for (const QJsonValue& result : answer.array())
        if (!result[QStringLiteral("success")].toBool())
            throw std::runtime_error("sway refuses \"" + text.toStdString() +
                                     "\": " + answer.toJson(QJsonDocument::Compact).toStdString());
}

QJsonObject SwayDesktop::tree() {
    return m_ipc->request(SwayIpc::Request::tree).object();
}

std::vector<SwayWindow> SwayDesktop::windows() {
    std::vector<SwayWindow> windows;
    collect(tree(), {}, windows);
    return windows;
}

std::optional<SwayWindow> SwayDesktop::window(const QString& text) {
    for (const SwayWindow& window : windows())
        if (window.title.contains(text) || window.appId.contains(text))
            return window;
    return {};
}

void SwayDesktop::place(const SwayWindow& window, const QRect& content) {
    const QString criteria = QStringLiteral("[con_id=%1] ").arg(window.id);
    // The program may take its time with the size: a place that is given meanwhile is moved by it.
    requireSoon("window in its place", [&] {
        for (const SwayWindow& now : windows()) {
            if (now.id != window.id)
                continue;
            if (now.content == content)
                return true;
            const QRect frame = content.translated(now.frame.topLeft() - now.content.topLeft());
            command(criteria + QStringLiteral("resize set %1 %2").arg(content.width()).arg(content.height()));
            command(criteria + QStringLiteral("move absolute position %1 %2").arg(frame.x()).arg(frame.y()));
        }
        return false;
    });
}

void SwayDesktop::focus(const SwayWindow& window) {
    command(QStringLiteral("[con_id=%1] focus").arg(window.id));
}

void SwayDesktop::close(const SwayWindow& window) {
    command(QStringLiteral("[con_id=%1] kill").arg(window.id));
}

QByteArray SwayDesktop::clipboard(const QString& type) {
    return run(QStringLiteral("timeout"),
               {QStringLiteral("20"), QStringLiteral("wl-paste"), QStringLiteral("--no-newline"),
                QStringLiteral("--type"), type},
               22000);
}

QImage SwayDesktop::clipboardImage() {
    return QImage::fromData(clipboard(), "PNG");
}

QStringList SwayDesktop::clipboardTypes() {
    return QString::fromUtf8(
               run(QStringLiteral("timeout"),
                   {QStringLiteral("20"), QStringLiteral("wl-paste"), QStringLiteral("--list-types")}, 22000))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

ChildProcess& SwayDesktop::setClipboard(const QByteArray& bytes, const QString& type) {
    const QString path = scratchPath() + QStringLiteral("/clipboard-source");
    writeFile(path, bytes);
    ChildProcess& owner =
        start(QStringLiteral("sh"),
              {QStringLiteral("-c"),
               QStringLiteral("exec wl-copy --foreground --type '%1' < '%2'").arg(type, path)});
    requireSoon("clipboard owner", [&] { return clipboard(type) == bytes; });
    return owner;
}

} // namespace framora
