#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

namespace framora {

/// The desktop's modal file dialogs.
class FilePanels {
public:
    virtual ~FilePanels() = default;
    /// One existing file; those of the given MIME types, all of them pictures, are shown together. Nothing
    /// when cancelled.
    virtual std::optional<QUrl> openPicture(const QString& message, const QStringList& mimeTypes) = 0;
    /// Where to write a PNG, starting from `proposedName`; an existing file is asked about. Nothing when
    /// cancelled.
    virtual std::optional<QUrl> savePng(const QString& proposedName) = 0;
};

} // namespace framora
