#pragma once

#include <QSize>
#include <QTemporaryDir>

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>
#include <wayland-server-core.h>

namespace framora {

/// A compositor that shows nothing and does what a test says, on a thread and a socket of its own. It takes
/// every request of the interfaces it offers and answers only those that a client waits for.
class ToyCompositor {
public:
    ToyCompositor();
    ~ToyCompositor();
    ToyCompositor(const ToyCompositor&) = delete;
    ToyCompositor& operator=(const ToyCompositor&) = delete;

    /// For WAYLAND_DISPLAY.
    QByteArray socketPath() const;

    /// Offers an interface from now on; the number withdraws it.
    int offer(const wl_interface& interface, int version);
    /// A monitor of so many pixels. `logical` is told where xdg-output is offered and it is not empty.
    int addOutput(const char* name, QSize pixels, int scale = 1, QSize logical = {});
    void withdraw(int number);

    /// How many objects of that interface clients have.
    int count(const wl_interface& interface);
    /// Sends an event without arguments to all of them.
    void sendToAll(const wl_interface& interface, std::uint32_t opcode);
    /// Puts something of these types on the clipboard; a client that asks gets `bytes`.
    void copy(const wl_interface& device, const wl_interface& offer, const std::vector<std::string>& types,
              const std::string& bytes);

    /// Answers nothing until the object is gone.
    class Silence {
    public:
        explicit Silence(ToyCompositor& compositor) : m_lock(compositor.m_work) {}

    private:
        std::unique_lock<std::mutex> m_lock;
    };

private:
    struct Global {
        ToyCompositor* owner;
        const wl_interface* interface;
        wl_global* global;
        const char* outputName = nullptr;
        QSize pixels{};
        int scale = 1;
        QSize logical{};
    };

    static ToyCompositor* running; ///< What an object's end is told to: one at a time.

    static void bound(wl_client* client, void* data, std::uint32_t version, std::uint32_t id);
    static int dispatch(const void*, void* target, std::uint32_t opcode, const wl_message* message,
                        wl_argument* arguments);
    wl_resource* make(wl_client* client, const wl_interface& interface, int version, std::uint32_t id,
                      void* data);
    void answer(wl_resource* object, const char* request, wl_resource* made, wl_argument* arguments);
    void run();

    QTemporaryDir m_folder;
    std::mutex m_work; ///< Held by whoever uses what follows.
    wl_display* m_display;
    std::vector<std::unique_ptr<Global>> m_globals;
    std::vector<wl_resource*> m_resources;
    std::string m_clipboard;
    bool m_stops = false;
    std::thread m_thread;
};

} // namespace framora
