#pragma once

#include "editor/render/WallpaperScan.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {

/// A home folder and a root of system folders, whose files the test makes.
class WallpaperFixture : public testing::Test {
protected:
    QString path(const QString& name) const { return m_root.filePath(name); }
    static QUrl url(const QString& file) { return QUrl::fromLocalFile(file); }

    /// A file of that many bytes, no picture.
    QString put(const QString& name, qint64 bytes) const {
        return write(name, QByteArray(qsizetype(bytes), 'x'));
    }
    QString write(const QString& name, const QByteArray& bytes) const {
        const QString file = path(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(file).path()));
        QFile out(file);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        EXPECT_EQ(out.write(bytes), bytes.size());
        return file;
    }

    /// The folders of this home, and system folders below the test's root.
    WallpaperFolders folders() const {
        WallpaperFolders all = WallpaperFolders::inHome(path(QStringLiteral("home")));
        for (QString& folder : all.folders)
            if (!folder.startsWith(m_root.path()))
                folder.prepend(m_root.path());
        return all;
    }

    std::vector<WallpaperCandidate> candidates(const std::vector<QUrl>& current = {}) const {
        return WallpaperScan::candidates(current, folders());
    }
    /// Below the test's root.
    QStringList foundPaths(const std::vector<QUrl>& current = {}) const {
        QStringList found;
        for (const WallpaperCandidate& candidate : candidates(current))
            found.append(QDir(m_root.path()).relativeFilePath(candidate.url.toLocalFile()));
        return found;
    }

private:
    QTemporaryDir m_root;
};

} // namespace framora
