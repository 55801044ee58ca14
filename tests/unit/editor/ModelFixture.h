#pragma once

#include "editor/model/RandomSource.h"
#include "editor/model/ScreenshotEditorViewModel.h"
#include "editor/render/ComposedPng.h"
#include "editor/render/PictureFile.h"
#include "platform/FilePanels.h"
#include "platform/ResourceBundle.h"
#include "support/ManualBackgroundQueue.h"
#include "support/ManualMainQueue.h"

#include <QFile>
#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>

namespace framora {

/// File dialogs that answer as the test says, and remember what they were asked.
class ScriptedFilePanels final : public FilePanels {
public:
    std::optional<QUrl> openPicture(const QString& message, const QStringList& mimeTypes) override {
        openMessage = message;
        openTypes = mimeTypes;
        if (whileOpen)
            whileOpen();
        return answer;
    }
    std::optional<QUrl> savePng(const QString& name) override {
        ++saveCount;
        proposedName = name;
        if (whileOpen)
            whileOpen();
        return answer;
    }

    std::optional<QUrl> answer;
    std::function<void()> whileOpen; ///< What happens elsewhere in the program while the dialog is up.
    QString openMessage;
    QStringList openTypes;
    QString proposedName;
    int saveCount = 0;
};

/// A folder in the role of the program's resources; the bundle lookup can be made to fail.
class FolderResources final : public ResourceBundle {
public:
    std::optional<QUrl> url(const QString& name, const QString& type,
                            const QString& subdirectory) const override {
        const QString path = QStringLiteral("%1/%2/%3.%4").arg(folder.path(), subdirectory, name, type);
        return bundled && QFile::exists(path) ? std::optional(QUrl::fromLocalFile(path)) : std::nullopt;
    }
    std::optional<QUrl> urlAnywhere(const QString& name, const QString& type) const override {
        const QString path = QStringLiteral("%1/elsewhere/%2.%3").arg(folder.path(), name, type);
        return bundled && QFile::exists(path) ? std::optional(QUrl::fromLocalFile(path)) : std::nullopt;
    }
    QString resourcePath() const override { return folder.path(); }

    QTemporaryDir folder;
    bool bundled = true;
};

/// Draws the position inside the range that the test queued (0 is the low end, 1 the high end), and writes
/// down every range.
class ScriptedRandom final : public RandomSource {
public:
    double real(double low, double high) override {
        ranges.push_back({low, high});
        return low + (high - low) * next();
    }
    int integer(int low, int high) override {
        ranges.push_back({double(low), double(high)});
        return low + int(next() * (high - low));
    }

    std::deque<double> positions;
    std::vector<std::pair<double, double>> ranges;

private:
    double next() {
        if (positions.empty())
            return 0.5;
        const double position = positions.front();
        positions.pop_front();
        return position;
    }
};

class ModelFixture : public testing::Test {
public:
    static QImage picture(int width, int height, QColor color = Qt::red) {
        QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
        image.fill(color);
        return image;
    }

    QString writePicture(const QString& name, const QImage& image) {
        QString path = files.filePath(name);
        EXPECT_TRUE(image.save(path));
        return path;
    }

    void addTexture(const QByteArray& bytes = {}, const QString& subfolder = QStringLiteral("public")) {
        QDir(resources.folder.path()).mkdir(subfolder);
        texturePath = resources.folder.filePath(
            subfolder + QStringLiteral("/Black and White Gradient Macbook Wallpaper_Texture.png"));
        if (bytes.isEmpty()) {
            ASSERT_TRUE(picture(800, 800, Qt::gray).save(texturePath));
        } else {
            QFile file(texturePath);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
    }

    std::unique_ptr<ScreenshotEditorViewModel> makeModel(const QImage& image) {
        return std::make_unique<ScreenshotEditorViewModel>(
            image, ScreenshotEditorViewModel::Services{
                       queue, background, queue, panels, resources, random,
                       [this](const Composition& composition) {
                           return encodeFails ? QByteArray()
                                              : composedPng(composition).value_or(QByteArray());
                       },
                       [this](const QString& message, const QString& icon, bool success) {
                           toasts.append(QStringLiteral("%1|%2|%3").arg(message, icon).arg(success));
                       },
                       [this](const ScreenshotEditorViewModel::Wallpaper& wallpaper) {
                           shared.append(wallpaper.first);
                       }});
    }

    /// Changes one field of the model's style, past the operations.
    template <class Change> static void change(ScreenshotEditorViewModel& model, Change apply) {
        ScreenshotStyleConfig config = model.config();
        apply(config);
        model.setConfig(config);
    }

    /// What was read in the background arrives.
    void finishImports() {
        background.runPending();
        queue.runPending();
    }

    ManualMainQueue queue;
    ManualBackgroundQueue background{queue};
    ScriptedFilePanels panels;
    FolderResources resources;
    ScriptedRandom random;
    QTemporaryDir files;
    QString texturePath;
    bool encodeFails = false;
    QStringList toasts;
    QList<QUrl> shared;
};

} // namespace framora
