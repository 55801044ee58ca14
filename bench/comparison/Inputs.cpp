#include "Inputs.h"

#include "Photograph.h"
#include "editor/render/BackgroundDecoder.h"
#include "editor/render/PictureFile.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>
#include <cstdio>
#include <cstdlib>

namespace framora::comparison {

Inputs readInputs(const QString& screenshotPath, const QString& folder, bool withPhotograph) {
    QDir().mkpath(folder);
    Inputs inputs{.screenshotPath = QFileInfo(screenshotPath).absoluteFilePath(),
                  .screenshot = loadPicture(screenshotPath).image,
                  .photographPath = QDir(folder).absoluteFilePath(QStringLiteral("photograph.jpg")),
                  .photograph = {},
                  .folder = QDir(folder).absolutePath()};
    inputs.screenshot.setDevicePixelRatio(1);
    if (inputs.screenshot.size() != screenshotSize) {
        std::fprintf(stderr, "compare_bench: '%s' is no picture of %d x %d pixels\n",
                     qPrintable(screenshotPath), screenshotSize.width(), screenshotSize.height());
        std::exit(2);
    }
    if (!withPhotograph)
        return inputs;
    if (!QFileInfo::exists(inputs.photographPath)) {
        constexpr int quality = 90;
        makePhotograph(photographSize).save(inputs.photographPath, "JPEG", quality);
    }
    inputs.photograph = BackgroundDecoder::decode(QUrl::fromLocalFile(inputs.photographPath));
    return inputs;
}

} // namespace framora::comparison
