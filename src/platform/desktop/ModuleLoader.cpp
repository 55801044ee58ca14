#include "platform/desktop/ModuleLoader.h"

#include "platform/desktop/Installation.h"

#include <QFile>
#include <dlfcn.h>

namespace framora {

void* moduleFunction(const char* module, const char* function) {
    const QString path = modulePath(QLatin1String(module));
    // Local: what the module links of the program's rooms is its own, and must not be taken for the
    // program's.
    void* handle = dlopen(QFile::encodeName(path).constData(), RTLD_LAZY | RTLD_LOCAL);
    void* address = handle ? dlsym(handle, function) : nullptr;
    if (!address)
        qWarning("framora: %s", dlerror());
    return address;
}

} // namespace framora
