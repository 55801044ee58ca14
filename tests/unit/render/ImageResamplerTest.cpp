#include "editor/render/ImageResampler.h"

#include "unit/render/TestPictures.h"

#include <QThread>
#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(ImageResampler, FitsTheBoundAndKeepsTheAspect) {
    EXPECT_EQ(resizedImage(flatPicture(200, 100), 400, 300).size(), QSize(400, 200));
    EXPECT_EQ(resizedImage(flatPicture(100, 200), 400, 300).size(), QSize(150, 300));
    EXPECT_EQ(resizedImage(flatPicture(1000, 900), 400, 300).size(), QSize(333, 300)) << "too high at first";
    EXPECT_EQ(resizedImage(flatPicture(90, 100), 40, 300).size(), QSize(40, 44)) << "too wide at first";
    EXPECT_EQ(resizedImage(flatPicture(100, 100), 400, 300).size(), QSize(300, 300));
}

TEST(ImageResampler, EnlargesSmallPictures) {
    EXPECT_EQ(resizedImage(flatPicture(4, 2), 400, 300).size(), QSize(400, 200));
}

TEST(ImageResampler, MeasuresInPoints) {
    const QImage result = resizedImage(flatPicture(400, 200, Qt::red, 2), 100, 100);
    EXPECT_EQ(result.size(), QSize(100, 50));
    EXPECT_EQ(result.devicePixelRatio(), 1);
}

TEST(ImageResampler, KeepsAtLeastAPixel) {
    EXPECT_EQ(resizedImage(flatPicture(1000, 1), 100, 100).size(), QSize(100, 1));
    EXPECT_EQ(resizedImage(flatPicture(1, 1000), 100, 100).size(), QSize(1, 100));
}

TEST(ImageResampler, KeepsThePicture) {
    EXPECT_EQ(resizedImage(flatPicture(200, 100, QColor(10, 20, 30)), 64, 64).pixel(5, 5), qRgb(10, 20, 30));
    const QImage noise = noisePicture(60, 30);
    const QImage same = resizedImage(noise, 60, 60);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 60; ++x)
            ASSERT_EQ(same.pixel(x, y), noise.pixel(x, y));
}

TEST(ImageResampler, GivesNothingForNothing) {
    EXPECT_TRUE(resizedImage(QImage(), 100, 100).isNull());
    for (const double bound : {0.0, -5.0, double(NAN), double(INFINITY), 1e9}) {
        EXPECT_TRUE(resizedImage(flatPicture(10, 10), bound, 100).isNull()) << bound;
        EXPECT_TRUE(resizedImage(flatPicture(10, 10), 100, bound).isNull()) << bound;
    }
}

TEST(ImageResampler, WorksOnAnyThread) {
    QImage result;
    std::unique_ptr<QThread> thread(
        QThread::create([&] { result = resizedImage(flatPicture(40, 20), 80, 80); }));
    thread->start();
    thread->wait();
    EXPECT_EQ(result.size(), QSize(80, 40));
}

} // namespace
} // namespace framora
