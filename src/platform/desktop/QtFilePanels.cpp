#include "platform/desktop/QtFilePanels.h"

#include "platform/Localized.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QPointer>
#include <QStandardPaths>
#include <QWindow>

namespace framora {

namespace {

QString picturesFolder() {
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

/// Runs the dialog over the window the user works in.
std::optional<QUrl> run(QFileDialog& dialog) {
    const QPointer<QWindow> owner = QGuiApplication::focusWindow();
    dialog.setWindowModality(Qt::ApplicationModal);
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

std::optional<QUrl> QtFilePanels::openFile(const QString& message, const QStringList& mimeTypes) {
    QFileDialog dialog(nullptr, message, picturesFolder());
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setMimeTypeFilters(mimeTypes);
    return run(dialog);
}

std::optional<QUrl> QtFilePanels::savePng(const QString& proposedName) {
    QFileDialog dialog(nullptr, localized(QStringLiteral("save.title")), picturesFolder());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setMimeTypeFilters({QStringLiteral("image/png")});
    dialog.setDefaultSuffix(QStringLiteral("png"));
    dialog.selectFile(proposedName);
    return run(dialog);
}

} // namespace framora
