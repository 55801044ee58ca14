#pragma once

#include "desktop/support/ScriptedPieces.h"

namespace framora {

/// The monitors of a ScriptedCompositor, with xdg-output.
class ScriptedOutputs {
public:
    struct Monitor {
        ScriptedOutput told;
        QImage picture; ///< What it shows, as the panel hangs.
        ScriptedPieces* pieces = nullptr;
        wl_global* global = nullptr;
        bool gone = false;
        std::vector<wl_resource*> resources;
        std::vector<wl_resource*> extras; ///< Of xdg-output.

        QSize logicalSize() const;
    };

    explicit ScriptedOutputs(ScriptedPieces& pieces);
    ~ScriptedOutputs();

    /// Null when there is none of that name any more.
    Monitor* named(const QString& name);
    Monitor* first();
    void add(const ScriptedOutput& output);
    void remove(const QString& name);
    /// Tells what the output has become.
    void change(const QString& name, const std::function<void(ScriptedOutput&)>& edit);

private:
    static void bindOutput(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void bindManager(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void tell(const Monitor& monitor, wl_resource* output);
    static void tellExtra(const Monitor& monitor, wl_resource* extra);

    ScriptedPieces& m_pieces;
    std::vector<std::unique_ptr<Monitor>> m_monitors; ///< Those that have gone, too: clients still name them.
};

} // namespace framora
