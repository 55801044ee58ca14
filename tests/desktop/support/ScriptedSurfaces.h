#pragma once

#include "desktop/support/ScriptedOutputs.h"

namespace framora {

/// Surfaces of a ScriptedCompositor, those on its layer shell above all: it keeps what they show.
class ScriptedSurfaces {
public:
    struct Surface {
        ScriptedPieces* pieces = nullptr;
        wl_resource* resource = nullptr;
        wl_resource* layer = nullptr; ///< The zwlr_layer_surface_v1; null without that role.
        ScriptedOutputs::Monitor* output = nullptr;
        QString scope;
        bool wantsKeyboard = false;
        wl_resource* pending = nullptr; ///< The buffer that was attached last.
        bool attached = false;
        bool configured = false;
        QImage shown; ///< Null while it shows nothing.
        std::vector<wl_resource*> frames;
    };

    explicit ScriptedSurfaces(ScriptedPieces& pieces);
    ~ScriptedSurfaces();

    /// Those with a role on the layer shell.
    std::vector<Surface*> layers() const;
    Surface* layerOn(const QString& output) const;
    void close(const QString& output);
    void configure(Surface& surface, QSize size);

private:
    static void bindCompositor(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void bindLayerShell(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void bindViewporter(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    void create(wl_client* client, std::uint32_t id, int version);
    void commit(Surface& surface);
    void takePicture(Surface& surface);

    ScriptedPieces& m_pieces;
    std::vector<std::unique_ptr<Surface>> m_surfaces;
};

} // namespace framora
