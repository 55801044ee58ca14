#include "PictureDifference.h"

#include <cstdlib>

namespace framora::comparison {

PictureDifference comparePictures(const QImage& a, const QImage& b) {
    if (a.isNull() || a.size() != b.size())
        return {};
    const QImage left = a.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage right = b.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    constexpr int farLevels = 16;
    qint64 sum = 0;
    qint64 far = 0;
    for (int y = 0; y < left.height(); ++y) {
        const uchar* p = left.constScanLine(y);
        const uchar* q = right.constScanLine(y);
        int rowSum = 0;
        int rowFar = 0;
        for (int i = 0; i < left.width() * 4; ++i) {
            const int distance = std::abs(p[i] - q[i]);
            rowSum += distance;
            rowFar += distance > farLevels;
        }
        sum += rowSum;
        far += rowFar;
    }
    const double count = 4.0 * left.width() * left.height();
    return {.mean = double(sum) / count, .farShare = double(far) / count};
}

} // namespace framora::comparison
