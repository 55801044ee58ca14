#include "platform/desktop/pictures/SettingsFile.h"

#include "platform/RegularFile.h"

namespace framora {

QByteArray readSettingsFile(const QString& path) {
    constexpr qint64 largest = 8 << 20;
    QFile file;
    if (!openRegularFile(file, path))
        return {};
    const QByteArray content = file.read(largest + 1);
    return content.size() > largest ? QByteArray() : content;
}

} // namespace framora
