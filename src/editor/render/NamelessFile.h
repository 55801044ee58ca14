#pragma once

#include "editor/render/PngTarget.h"

#include <QByteArray>
#include <QString>
#include <sys/types.h>

namespace framora {

/// A file that is written without a name and named when it is whole: whatever ends the process, no part of a
/// file stays behind. What the path named before is replaced, a link's target in place of the link.
class NamelessFile final : public PngTarget {
public:
    /// isOpen() is false where the file system has no such files or anything else is in the way.
    explicit NamelessFile(const QString& path);
    ~NamelessFile() override;

    bool isOpen() const { return m_descriptor >= 0; }
    void write(std::span<const std::uint8_t> bytes) override;
    void clear() override;
    /// Why a write failed, in words; empty when none did.
    QString error() const;
    /// Gives it its name, once it is on the disk. False, with nothing changed, where that or a write before
    /// it failed.
    bool commit();

private:
    void startStoring(std::size_t written);

    int m_descriptor = -1;
    int m_error = 0;     ///< errno of the write that failed.
    off_t m_size = 0;    ///< Written so far,
    off_t m_storing = 0; ///< and of that what the disk was given already, so that commit() waits for less.
    QByteArray m_folder;
    QByteArray m_name;
};

/// Writes such a file at once. False, with nothing changed, where there can be none.
bool writeThroughNamelessFile(const QString& path, const QByteArray& bytes);

} // namespace framora
