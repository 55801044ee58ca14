#include "platform/desktop/pictures/PicturePackage.h"

#include <QDir>
#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace framora {
namespace {

/// How badly a picture suits a screen: its shape weighs most, then pixels that are missing, then those too
/// many.
double mismatch(QSize picture, QSize screen) {
    const auto shape = [](QSize size) { return double(size.width()) / size.height(); };
    const double area =
        std::log(double(picture.width()) * picture.height() / (double(screen.width()) * screen.height()));
    return std::abs(std::log(shape(picture) / shape(screen))) * 100 + (area < 0 ? -area * 4 : area);
}

QString bestPicture(const QString& folder, QSize screen) {
    static const QRegularExpression sized(QStringLiteral("^([1-9]\\d{1,4})x([1-9]\\d{1,4})\\.\\w+$"));
    QString best;
    double least = std::numeric_limits<double>::infinity();
    const QDir pictures(folder);
    for (const QString& name : pictures.entryList(QDir::Files, QDir::Name)) {
        const auto match = sized.match(name);
        const double value = match.hasMatch() && !screen.isEmpty()
                                 ? mismatch({match.captured(1).toInt(), match.captured(2).toInt()}, screen)
                                 : std::numeric_limits<double>::max();
        if (value < least) {
            least = value;
            best = pictures.filePath(name);
        }
    }
    return best;
}

} // namespace

QString pictureOfPackage(const QString& folder, QSize screen, bool dark) {
    if (dark)
        if (const QString picture = bestPicture(folder + QStringLiteral("/contents/images_dark"), screen);
            !picture.isEmpty())
            return picture;
    return bestPicture(folder + QStringLiteral("/contents/images"), screen);
}

} // namespace framora
