#include "platform/desktop/ModuleLoader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <dlfcn.h>

namespace framora {

void* moduleFunction(const char* module, const char* function) {
    const QDir own(QCoreApplication::applicationDirPath());
    const QString file = QLatin1String(module) + QStringLiteral(".so");
    // Beside the program in the build tree, among its private libraries once installed.
    QString path = own.filePath(file);
    if (!QFileInfo::exists(path))
        path = QDir::cleanPath(own.filePath(QStringLiteral(FRAMORA_MODULE_DIR "/") + file));
    // Local: what the module links of the program's rooms is its own, and must not be taken for the
    // program's.
    void* handle = dlopen(QFile::encodeName(path).constData(), RTLD_LAZY | RTLD_LOCAL);
    void* address = handle ? dlsym(handle, function) : nullptr;
    if (!address)
        qWarning("framora: %s", dlerror());
    return address;
}

} // namespace framora
