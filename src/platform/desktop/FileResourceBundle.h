#pragma once

#include "platform/ResourceBundle.h"

namespace framora {

/// The program's files on disk: in the installation, else in the tree it was built from.
class FileResourceBundle final : public ResourceBundle {
public:
    FileResourceBundle();
    explicit FileResourceBundle(QString resourcePath) : m_resourcePath(std::move(resourcePath)) {}

    std::optional<QUrl> url(const QString& name, const QString& type,
                            const QString& subdirectory) const override;
    std::optional<QUrl> urlAnywhere(const QString& name, const QString& type) const override;
    QString resourcePath() const override { return m_resourcePath; }

private:
    QString m_resourcePath;
};

} // namespace framora
