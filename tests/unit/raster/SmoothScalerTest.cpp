#include "raster/SmoothScaler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

QImage Noise(const QSize& size, unsigned seed) {
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xff000000U | (random() & 0xffffffU));
    return image;
}

int MaxDifference(const QImage& one, const QImage& other) {
    int largest = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                std::abs(qBlue(a) - qBlue(b))});
        }
    return largest;
}

/// The difference of a random part of the scaled image from the same part of Qt's complete one.
int DifferenceAt(const QImage& source, const QSize& target, std::mt19937& random) {
    const QImage full = source.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QRect part(static_cast<int>(random() % static_cast<unsigned>(target.width())),
               static_cast<int>(random() % static_cast<unsigned>(target.height())), 90, 70);
    part = part.intersected(QRect(QPoint(0, 0), target));
    QImage rendered(part.size() + QSize(3, 2), QImage::Format_RGB32);
    SmoothScaler(source, target).Render(part, rendered, {3, 2});
    return MaxDifference(rendered.copy(QRect(QPoint(3, 2), part.size())), full.copy(part));
}

TEST(SmoothScaler, partsEqualTheWholePictureAtEveryViewScale) {
    std::mt19937 random(5);
    for (const QSize size : {QSize(397, 301), QSize(200, 120), QSize(31, 400)}) {
        const QImage source = Noise(size, 11);
        for (int step = 1; step <= 80; ++step) {
            const QSize target = (QSizeF(size) * (step * 0.05)).toSize().expandedTo({1, 1});
            EXPECT_EQ(DifferenceAt(source, target, random), 0) << size.width() << " at " << step * 5 << " %";
        }
    }
}

TEST(SmoothScaler, partsEqualTheWholePictureWhenOneAxisGrowsAndTheOtherShrinks) {
    std::mt19937 random(6);
    const QImage source = Noise({300, 200}, 12);
    for (const QSize target : {QSize(450, 130), QSize(211, 390), QSize(300, 37), QSize(40, 200)})
        EXPECT_EQ(DifferenceAt(source, target, random), 0) << target.width() << " x " << target.height();
}

// Large enough for a thread on each of up to eight processors, with a height that none of these numbers
// divides.
TEST(SmoothScaler, rendersLargePartsAsQtDoes) {
    const QImage source = Noise({2600, 2000}, 14);
    for (const QSize target : {QSize(701, 541), QSize(2500, 421), QSize(600, 2003), QSize(2700, 2111)}) {
        QImage rendered(target, QImage::Format_RGB32);
        SmoothScaler(source, target).Render(QRect(QPoint(0, 0), target), rendered, {0, 0});
        const QImage expected = source.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        EXPECT_EQ(MaxDifference(rendered, expected), 0) << target.width() << " x " << target.height();
    }
}

TEST(SmoothScaler, sameSizeIsTheSourceUnchanged) {
    const QImage source = Noise({50, 40}, 13);
    QImage rendered(50, 40, QImage::Format_RGB32);
    SmoothScaler(source, {50, 40}).Render({0, 0, 50, 40}, rendered, {0, 0});
    EXPECT_EQ(rendered, source);
}

TEST(SmoothScaler, scalesASinglePixel) {
    QImage source(1, 1, QImage::Format_RGB32);
    source.fill(qRgb(10, 20, 30));
    QImage rendered(8, 8, QImage::Format_RGB32);
    SmoothScaler(source, {8, 8}).Render({0, 0, 8, 8}, rendered, {0, 0});
    EXPECT_EQ(rendered.pixel(7, 7), qRgb(10, 20, 30));
    EXPECT_EQ(rendered.pixel(0, 0), qRgb(10, 20, 30));
}

} // namespace
