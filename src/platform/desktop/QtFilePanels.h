#pragma once

#include "platform/FilePanels.h"

namespace framora {

/// The desktop's file dialogs through Qt, over the program's active window.
class QtFilePanels final : public FilePanels {
public:
    std::optional<QUrl> openPicture(const QString& message, const QStringList& mimeTypes) override;
    std::optional<QUrl> savePng(const QString& proposedName) override;
};

} // namespace framora
