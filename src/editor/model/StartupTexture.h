#pragma once

#include <QImage>
#include <QUrl>
#include <optional>

namespace framora {

class ResourceBundle;

/// The packaged picture that a new editor starts with.
struct StartupTexture {
    QUrl url;
    QImage thumbnail; ///< thumbnailOf() it.

    /// Nothing when there is none or it cannot be read. Takes tens of milliseconds; safe on any thread.
    static std::optional<StartupTexture> load(const ResourceBundle& resources);
};

} // namespace framora
