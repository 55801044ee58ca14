#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

/// A file without a name, in memory, to hand bytes to another process or take them from it. Nothing of it is
/// inherited by itself.
class MemoryFile {
public:
    /// `label` is what tools that list open files show.
    explicit MemoryFile(const char* label);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// -1 where there is no memory for it.
    int descriptor() const { return m_descriptor; }
    /// Where this process can open it anew, from its start.
    QString path() const;

    /// Puts the bytes in its place. False when not all of them could be written.
    bool write(const QByteArray& bytes);
    /// All that is in it; nothing when that is more than `most` bytes.
    QByteArray contents(qint64 most) const;

private:
    int m_descriptor;
};

} // namespace framora
