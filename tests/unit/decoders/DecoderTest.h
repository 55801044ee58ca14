#pragma once

#include "editor/render/BackgroundDecoder.h"
#include "support/MediaFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {

class DecoderTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }

    QByteArray read(const QString& name) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    static QImage decode(const QString& path) { return BackgroundDecoder::decode(QUrl::fromLocalFile(path)); }

    static void expectColor(const QImage& image, QPoint at, QColor color, int tolerance) {
        ASSERT_TRUE(image.rect().contains(at)) << image.width() << " x " << image.height();
        const QColor found = image.pixelColor(at);
        EXPECT_NEAR(found.red(), color.red(), tolerance);
        EXPECT_NEAR(found.green(), color.green(), tolerance);
        EXPECT_NEAR(found.blue(), color.blue(), tolerance);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace framora
