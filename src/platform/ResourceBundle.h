#pragma once

#include <QString>
#include <QUrl>
#include <optional>

namespace framora {

/// The files that the program ships beside its binaries.
class ResourceBundle {
public:
    virtual ~ResourceBundle() = default;
    /// The file `name`.`type` in `subdirectory` of the resources; nothing when it is not there.
    virtual std::optional<QUrl> url(const QString& name, const QString& type,
                                    const QString& subdirectory) const = 0;
    /// The same wherever it lies in the resources.
    virtual std::optional<QUrl> urlAnywhere(const QString& name, const QString& type) const = 0;
    /// The resource folder itself.
    virtual QString resourcePath() const = 0;
};

} // namespace framora
