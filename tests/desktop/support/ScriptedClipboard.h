#pragma once

#include "desktop/support/ScriptedPieces.h"

namespace framora {

/// The clipboard of a ScriptedCompositor by ext-data-control and wlr-data-control.
class ScriptedClipboard {
public:
    /// What some other program has there. `send` gets the descriptor to write into, and owns it.
    struct Content {
        std::vector<QByteArray> types;
        std::function<void(const QByteArray& type, int descriptor)> send;
    };

    explicit ScriptedClipboard(ScriptedPieces& pieces);
    ~ScriptedClipboard();

    /// Takes it from whoever had it.
    void offer(Content content);
    /// What the client that owns it offers; empty when none does.
    std::vector<QByteArray> ownedTypes() const;
    /// Asks its owner for that type, to be written into `descriptor`, which is closed here.
    void receive(const QByteArray& type, int descriptor);
    void finishDevices();
    int devices() const { return int(m_devices.size()); }
    /// Objects of offers that clients hold.
    int offers() const { return m_offers; }

private:
    struct Kind;
    struct Source {
        ScriptedClipboard* clipboard;
        wl_resource* resource;
        std::vector<QByteArray> types;
    };

    template <int kind>
    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    void bindManager(wl_client* client, const Kind& kind, std::uint32_t version, std::uint32_t id);
    void addDevice(wl_client* client, const Kind& kind, int version, std::uint32_t id);
    void addSource(wl_client* client, const Kind& kind, int version, std::uint32_t id);
    void setSource(Source* source);
    void tell(wl_resource* device);
    void send(const QByteArray& type, int descriptor);

    static const Kind kinds[2];

    ScriptedPieces& m_pieces;
    std::vector<wl_resource*> m_devices;
    Source* m_source = nullptr;
    std::optional<Content> m_content;
    int m_offers = 0;
};

} // namespace framora
