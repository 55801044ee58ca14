#pragma once

#include "desktop/support/ScriptedSurfaces.h"

namespace framora {

/// The seat of a ScriptedCompositor. A device that goes takes its clients' objects along: those stay silent,
/// also when a device comes back, as on real compositors.
class ScriptedSeat {
public:
    explicit ScriptedSeat(ScriptedPieces& pieces);
    ~ScriptedSeat();

    /// A seat that goes and another that comes.
    void withdraw();
    void offer();
    void setCapabilities(std::uint32_t capabilities);
    /// In the surface's logical pixels.
    void pointTo(ScriptedSurfaces::Surface& surface, QPointF position);
    void button(std::uint32_t code, bool pressed);
    void key(std::uint32_t code, bool pressed);

    /// Whether some client listens to every device that there is now.
    bool isHeard() const;

    void keyboardTo(ScriptedSurfaces::Surface& surface);
    void forget(const ScriptedSurfaces::Surface& surface);

private:
    struct Device {
        wl_resource* resource;
        const void* over = nullptr; ///< The surface it was last told of.
        bool inert = false;
    };

    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static void forgetDevice(wl_resource* resource);
    void addPointer(wl_client* client, std::uint32_t id, int version);
    void addKeyboard(wl_client* client, std::uint32_t id, int version);
    void tellPlace();
    void tellKeyboard();
    int keymap();

    ScriptedPieces& m_pieces;
    wl_global* m_global = nullptr;
    std::vector<wl_resource*> m_seats;
    std::vector<Device> m_pointers;
    std::vector<Device> m_keyboards;
    ScriptedSurfaces::Surface* m_over = nullptr;
    ScriptedSurfaces::Surface* m_focus = nullptr;
    QPointF m_position;
};

} // namespace framora
