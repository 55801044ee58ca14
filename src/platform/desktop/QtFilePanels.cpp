#include "platform/desktop/QtFilePanels.h"

#include "platform/Localized.h"
#include "platform/desktop/QtTranslation.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QPointer>
#include <QStandardPaths>
#include <QWindow>

namespace framora {

namespace {

QString picturesFolder() {
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

bool isNamedPng(const QString& name) {
    return name.endsWith(u".png", Qt::CaseInsensitive);
}

/// Why no file can be written at the path, for the user; empty where one can. A link stands for what it leads
/// to.
QString hindrance(const QString& path) {
    const QFileInfo named(path);
    const QFileInfo file(named.exists() ? named.canonicalFilePath() : named.absoluteFilePath());
    const QFileInfo folder(file.absolutePath());
    const auto because = [](const QString& reason, const QFileInfo& of) {
        return localized(reason).arg(QDir::toNativeSeparators(of.filePath()));
    };
    if (!folder.isDir())
        return because(QStringLiteral("save.no.folder"), folder);
    if (!folder.isWritable())
        return because(QStringLiteral("save.read.only"), folder);
    if (file.exists() && !file.isWritable())
        return because(QStringLiteral("save.protected"), file);
    return {};
}

/// A dialog for a file whose name ends in .png, whatever else the user typed: what "a.b" lacks is added
/// before the dialog asks about replacing a file. It stays open where no file can be made.
class SavePngDialog final : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    void accept() override {
        // The desktop's own dialog has no such field.
        auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        const QString chosen = field ? selectedFiles().value(0) : QString();
        const QString typed = field ? field->text() : QString();
        const bool namesFile = !typed.isEmpty() && !typed.endsWith(u'/') && !QFileInfo(chosen).isDir();
        const QString path = isNamedPng(chosen) ? chosen : chosen + QStringLiteral(".png");
        if (const QString reason = namesFile ? hindrance(path) : QString(); !reason.isEmpty()) {
            QMessageBox::warning(this, windowTitle(), reason);
            return;
        }
        if (namesFile && !isNamedPng(typed)) {
            // A file that is selected in the list would count before what the field says.
            if (auto* list = findChild<QListView*>(QStringLiteral("listView")))
                list->selectionModel()->clearSelection();
            field->setText(typed + QStringLiteral(".png"));
        }
        QFileDialog::accept();
    }
};

bool mayReplace(const QString& path, const QString& title) {
    return QMessageBox::warning(nullptr, title,
                                localized(QStringLiteral("save.replace")).arg(QFileInfo(path).fileName()),
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

/// One filter for all of the types: a filter each would show the files of the first alone.
QString pictureFilter(const QStringList& mimeTypes) {
    const QMimeDatabase database;
    QStringList patterns;
    for (const QString& type : mimeTypes)
        for (const QString& pattern : database.mimeTypeForName(type).globPatterns())
            patterns << pattern << pattern.toUpper(); // Some desktops' dialogs tell capitals apart.
    return QStringLiteral("%1 (%2)").arg(localized(QStringLiteral("open.images")), patterns.join(u' '));
}

/// Whether a dialog waits for the user already. A key that is pressed twice in a row asks for two.
bool isAnswering() {
    return QApplication::activeModalWidget() != nullptr;
}

/// Runs the dialog over the window the user works in.
std::optional<QUrl> run(QFileDialog& dialog) {
    const QPointer<QWindow> owner = QGuiApplication::focusWindow();
    dialog.setWindowModality(Qt::ApplicationModal);
    // Other places have no path to read or write at.
    dialog.setSupportedSchemes({QStringLiteral("file")});
    dialog.winId(); // A native window, so that it can be tied to its owner before it is shown.
    if (owner)
        dialog.windowHandle()->setTransientParent(owner);
    const int answer = dialog.exec();
    // When the question about replacing a file closes together with the dialog, some window managers hand the
    // focus to another program.
    if (owner)
        owner->requestActivate();
    if (answer != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().constFirst();
}

} // namespace

std::optional<QUrl> QtFilePanels::openPicture(const QString& message, const QStringList& mimeTypes) {
    if (isAnswering())
        return std::nullopt;
    translateQt();
    QFileDialog dialog(nullptr, message, picturesFolder());
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::HideNameFilterDetails); // Two dozen suffixes.
    dialog.setNameFilter(pictureFilter(mimeTypes));
    return run(dialog);
}

std::optional<QUrl> QtFilePanels::savePng(const QString& proposedName) {
    if (isAnswering())
        return std::nullopt;
    translateQt();
    SavePngDialog dialog(nullptr, localized(QStringLiteral("save.title")), picturesFolder());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setMimeTypeFilters({QStringLiteral("image/png")});
    dialog.setDefaultSuffix(QStringLiteral("png"));
    dialog.selectFile(proposedName);
    for (;;) {
        const auto url = run(dialog);
        if (!url || isNamedPng(url->path()))
            return url;
        // The desktop's own dialog asked about another name, if it asked at all.
        const QString path = url->toLocalFile() + QStringLiteral(".png");
        if (!QFileInfo::exists(path) || mayReplace(path, dialog.windowTitle()))
            return QUrl::fromLocalFile(path);
        dialog.selectFile(path);
    }
}

} // namespace framora
