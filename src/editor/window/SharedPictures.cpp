#include "editor/window/SharedPictures.h"

#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace framora {

SharedPictures::SharedPictures(MainQueue& mainQueue, QString folder)
    : m_mainQueue(mainQueue), m_folder(std::move(folder)) {}

SharedPictures::~SharedPictures() {
    if (!qApp->property(outliveProgram).toBool())
        return;
    for (const Entry& entry : m_entries)
        entry.folder->setAutoRemove(false);
}

std::optional<QString> SharedPictures::add(const QByteArray& png) {
    if (png.isEmpty())
        return {};
    if (m_folder.isEmpty())
        m_folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    // Made for its owner alone.
    auto folder = std::make_unique<QTemporaryDir>(m_folder + QStringLiteral("/framora-share-XXXXXX"));
    QFile file(folder->filePath(QStringLiteral("Screenshot.png")));
    if (!folder->isValid() || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly) ||
        file.write(png) != png.size() || !file.flush())
        return {};
    file.close();
    if (m_entries.size() == keptPictures)
        m_entries.pop_front();
    // All are kept equally long, so the first to go is the oldest.
    m_entries.push_back(
        {std::move(folder), m_mainQueue.after(keptSeconds, [this] { m_entries.pop_front(); })});
    return file.fileName();
}

void SharedPictures::remove(const QString& path) {
    std::erase_if(m_entries,
                  [&](const Entry& entry) { return entry.folder->path() == QFileInfo(path).path(); });
}

} // namespace framora
