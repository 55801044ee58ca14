#include "platform/desktop/AutostartEntry.h"

#include "platform/RegularFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace framora {
namespace {

constexpr char hidden[] = "Hidden";
constexpr char switchedOn[] = "X-GNOME-Autostart-enabled";
constexpr char exec[] = "Exec";
constexpr char mainGroup[] = "[Desktop Entry]";

constexpr char newEntry[] = R"([Desktop Entry]
Type=Application
Name=Framora
Comment=Take, dress and share screenshots
Icon=org.framora.Framora
Terminal=false
)";

std::optional<QByteArray> contents(const QString& path) {
    QFile file;
    return openRegularFile(file, path) ? std::optional(file.readAll()) : std::nullopt;
}

/// The lines of an entry, with the keys of its main group at hand.
class EntryLines {
public:
    explicit EntryLines(const QByteArray& text) : m_lines(text.split('\n')) {
        while (!m_lines.isEmpty() && m_lines.last().trimmed().isEmpty())
            m_lines.removeLast();
    }

    QByteArray value(const char* key) const {
        const auto line = find(key);
        return line < 0 ? QByteArray() : m_lines[line].mid(m_lines[line].indexOf('=') + 1).trimmed();
    }
    void set(const char* key, const QByteArray& value) {
        const QByteArray line = QByteArray(key) + '=' + value;
        if (const auto at = find(key); at >= 0)
            m_lines[at] = line;
        else
            m_lines.insert(groupEnd(), line);
    }
    void remove(const char* key) {
        if (const auto at = find(key); at >= 0)
            m_lines.removeAt(at);
    }
    bool isEntry() const { return groupStart() >= 0; }
    QByteArray text() const { return m_lines.join('\n') + '\n'; }

private:
    qsizetype groupStart() const {
        for (qsizetype i = 0; i < m_lines.size(); ++i)
            if (m_lines[i].trimmed() == mainGroup)
                return i;
        return -1;
    }
    /// The line after the group's last one that is not empty.
    qsizetype groupEnd() const {
        qsizetype end = groupStart() + 1;
        for (qsizetype i = end; i < m_lines.size() && !m_lines[i].startsWith('['); ++i)
            if (!m_lines[i].trimmed().isEmpty())
                end = i + 1;
        return end;
    }
    qsizetype find(const char* key) const {
        const qsizetype start = groupStart();
        if (start < 0)
            return -1;
        for (qsizetype i = start + 1; i < groupEnd(); ++i) {
            const auto equals = m_lines[i].indexOf('=');
            if (equals > 0 && m_lines[i].left(equals).trimmed() == key)
                return i;
        }
        return -1;
    }

    QList<QByteArray> m_lines;
};

bool isOn(const EntryLines& entry) {
    return entry.isEntry() && !entry.value(exec).isEmpty() && entry.value(hidden).toLower() != "true" &&
           entry.value(switchedOn).toLower() != "false";
}

/// The program as the one argument of a command line in an entry: quoted, then as an entry's text.
QByteArray commandLine(const QString& program) {
    QByteArray line = "\"";
    for (const char c : QFile::encodeName(program)) {
        if (c == '%')
            line += "%%";
        else if (c == '"' || c == '`' || c == '$' || c == '\\')
            line += QByteArray("\\\\") + (c == '\\' ? QByteArray("\\\\") : QByteArray(1, c));
        else
            line += c;
    }
    return line + '"';
}

/// The first word of a command line, without the quoting that commandLine() gives.
QString programOf(const QByteArray& line) {
    QByteArray plain;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const bool isEscaped = line[i] == '\\' && i + 1 < line.size();
        plain += line[isEscaped ? ++i : i];
    }
    QByteArray word;
    const bool isQuoted = plain.startsWith('"');
    for (qsizetype i = isQuoted ? 1 : 0; i < plain.size() && plain[i] != (isQuoted ? '"' : ' '); ++i) {
        if ((isQuoted && plain[i] == '\\') || plain[i] == '%')
            ++i;
        if (i < plain.size())
            word += plain[i];
    }
    return QFile::decodeName(word);
}

bool canBeStarted(const QString& program) {
    return !QStandardPaths::findExecutable(program).isEmpty();
}

bool replace(const QString& path, const QByteArray& text) {
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}

} // namespace

AutostartEntry::AutostartEntry(QString file, QStringList systemFolders, QString program)
    : m_file(std::move(file)), m_systemFolders(std::move(systemFolders)), m_program(std::move(program)) {}

AutostartEntry AutostartEntry::ofUser() {
    const QString name = QStringLiteral("/autostart/org.framora.Framora.desktop");
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    const QString own = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    folders.removeAll(own);
    for (QString& folder : folders)
        folder += QStringLiteral("/autostart");
    return AutostartEntry(own + name, folders, QCoreApplication::applicationFilePath());
}

std::optional<QByteArray> AutostartEntry::entryInForce() const {
    if (auto own = contents(m_file))
        return own;
    for (const QString& folder : m_systemFolders)
        if (auto entry = contents(folder + u'/' + QFileInfo(m_file).fileName()))
            return entry;
    return std::nullopt;
}

bool AutostartEntry::isEnabled() const {
    const auto entry = entryInForce();
    return entry && isOn(EntryLines(*entry));
}

bool AutostartEntry::setEnabled(bool enabled) {
    if (!enabled) {
        QFile::remove(m_file);
        if (!isEnabled())
            return !QFile::exists(m_file);
        // The system's entry remains; an own one that is hidden stands before it.
        return replace(m_file, QByteArray(newEntry) + "Hidden=true\n");
    }
    EntryLines lines(contents(m_file).value_or(QByteArray()));
    if (!lines.isEntry())
        lines = EntryLines(newEntry);
    lines.set(exec, commandLine(m_program));
    lines.remove(hidden);
    lines.set(switchedOn, "true");
    return replace(m_file, lines.text());
}

void AutostartEntry::followProgram() {
    const auto own = contents(m_file);
    if (!own)
        return;
    EntryLines lines(*own);
    if (!isOn(lines) || canBeStarted(programOf(lines.value(exec))))
        return;
    lines.set(exec, commandLine(m_program));
    replace(m_file, lines.text());
}

} // namespace framora
