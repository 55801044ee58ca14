#include "screencapture/BusRoutes.h"

#include <dlfcn.h>
#include <string>
#include <unistd.h>

namespace framora {

namespace {

constexpr const char* kModule = "framora-portals.so";

std::string ownFolder() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0)
        return {};
    path.resize(static_cast<std::size_t>(length));
    return path.substr(0, path.rfind('/') + 1);
}

void* openModule() {
    const std::string folder = ownFolder();
    for (const std::string& path : {folder + kModule, folder + FRAMORA_MODULE_DIR "/" + kModule})
        if (access(path.c_str(), R_OK) == 0)
            // Local: what the module links of the program's rooms is its own.
            return dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    return nullptr;
}

} // namespace

BusRoutes* busRoutes() {
    static BusRoutes* const routes = []() -> BusRoutes* {
        void* module = openModule();
        void* function = module ? dlsym(module, "framoraBusRoutes") : nullptr;
        return function ? reinterpret_cast<BusRoutes* (*)()>(function)() : nullptr;
    }();
    return routes;
}

} // namespace framora
