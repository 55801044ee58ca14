#pragma once

#include "desktop/support/ScriptedOutputs.h"

namespace framora {

/// Copies of outputs by wlr-screencopy and ext-image-copy-capture, answered as the outputs' scripts say.
class ScriptedCopies {
public:
    explicit ScriptedCopies(ScriptedPieces& pieces);
    ~ScriptedCopies();

    int asked() const { return m_asked; }

private:
    /// One copy, or with image-copy-capture one session.
    struct Copy {
        ScriptedPieces* pieces = nullptr;
        ScriptedOutputs::Monitor* monitor = nullptr;
        CopyAnswer answer;
        wl_resource* session = nullptr; ///< Null for screencopy, or where it has gone.
        wl_resource* buffer = nullptr;

        QSize size() const { return answer.size.value_or(monitor->told.mode); }
    };

    static void bindScreencopy(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void bindSources(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void bindImageCopy(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    Copy& begin(ScriptedOutputs::Monitor& monitor);
    static void offer(const Copy& copy, wl_resource* frame);
    static void copyInto(Copy& copy, wl_resource* frame, wl_resource* buffer);
    static void tellConstraints(const Copy& copy);
    static void capture(Copy& copy, wl_resource* frame);
    /// False when the buffer is not what was offered, which ends the client.
    static bool fill(const Copy& copy, wl_resource* frame, wl_resource* buffer, bool strideToo);

    ScriptedPieces& m_pieces;
    std::vector<std::unique_ptr<Copy>>
        m_copies; ///< All of them: resources name them until their client goes.
    int m_asked = 0;
};

} // namespace framora
