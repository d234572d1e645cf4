#include <gmock/gmock.h>

#include <QIcon>
#include <QImage>

namespace {

QString Named(const char* name) {
    return QStringLiteral(":/icon/icon/") + QString::fromLatin1(name);
}

/// The number of clearly visible pixels.
int ColouredPixels(const QImage& picture) {
    int count = 0;
    for (int row = 0; row < picture.height(); ++row)
        for (int column = 0; column < picture.width(); ++column)
            count += qAlpha(picture.pixel(column, row)) > 127 ? 1 : 0;
    return count;
}

TEST(Icons, windowIconHasEverySizeThatDesktopsUse) {
    const QIcon icon(Named("app.ico"));
    ASSERT_FALSE(icon.isNull());
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        const QSize size(side, side);
        EXPECT_TRUE(icon.availableSizes().contains(size)) << side;
        const QImage picture = icon.pixmap(size).toImage();
        ASSERT_EQ(picture.size(), size);
        EXPECT_GT(ColouredPixels(picture), side * side * 3 / 4) << side;
    }
}

TEST(Icons, windowIconIsRoundAtItsCorners) {
    const QImage picture = QIcon(Named("app.ico")).pixmap(48, 48).toImage();
    for (const QPoint& corner : {QPoint(0, 0), QPoint(47, 0), QPoint(0, 47), QPoint(47, 47)})
        EXPECT_EQ(qAlpha(picture.pixel(corner)), 0);
}

TEST(Icons, uploadIsDrawnForTheSizeItsButtonShows) {
    const QIcon icon(Named("upload.png"));
    const QImage picture = icon.pixmap(70, 70).toImage();
    ASSERT_EQ(picture.size(), QSize(70, 70));
    EXPECT_GT(ColouredPixels(picture), 1000);
}

TEST(Icons, refreshShowsAtTheSizesOfAllStyles) {
    const QIcon icon(Named("refresh.png"));
    for (const int side : {16, 20, 24, 32}) {
        const QImage picture = icon.pixmap(side, side).toImage();
        ASSERT_EQ(picture.size(), QSize(side, side));
        EXPECT_GT(ColouredPixels(picture), side * side / 5) << side;
    }
}

TEST(Icons, highDpiScreensGetHighResolutionIcons) {
    for (const char* const name : {"refresh", "upload"}) {
        const int side = QImage(Named(name) + QStringLiteral(".png")).width();
        ASSERT_GT(side, 0) << name;
        EXPECT_EQ(QImage(Named(name) + QStringLiteral("@2x.png")).width(), 2 * side) << name;
        EXPECT_EQ(QImage(Named(name) + QStringLiteral("@3x.png")).width(), 3 * side) << name;
    }
}

} // namespace
