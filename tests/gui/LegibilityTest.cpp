#include "WindowTest.h"

#include "window/WaitingSpinnerWidget.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QPalette>
#include <QScopeGuard>

#include <filesystem>

namespace {

/// The colours of a dark desktop, while it lives.
class DarkDesktop {
  public:
    DarkDesktop() : before(QApplication::palette()) {
        QPalette dark(QColor(45, 45, 48));
        dark.setColor(QPalette::Window, QColor(45, 45, 48));
        dark.setColor(QPalette::Base, QColor(30, 30, 30));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            dark.setColor(role, Qt::white);
        QApplication::setPalette(dark);
    }
    DarkDesktop(const DarkDesktop&) = delete;
    DarkDesktop& operator=(const DarkDesktop&) = delete;
    ~DarkDesktop() { QApplication::setPalette(before); }

  private:
    QPalette before;
};

using Legibility = WindowTest;

/// The darkest and the lightest pixel of a widget.
std::pair<int, int> Extremes(const QImage& picture) {
    int darkest = 255;
    int lightest = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            darkest = std::min(darkest, qGray(picture.pixel(x, y)));
            lightest = std::max(lightest, qGray(picture.pixel(x, y)));
        }
    return {darkest, lightest};
}

TEST_F(Legibility, fileNameIsDarkOnWhiteOnADarkDesktop) {
    const DarkDesktop dark;
    WriteFile(folder.Path("cover.trk"), independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 100))));
    openWindow();
    loadExternal(folder.Path("cover.trk"));
    const auto [darkest, lightest] = Extremes(find<QLabel>("label_fileName").grab().toImage());
    EXPECT_LT(darkest, 80);
    EXPECT_GT(lightest, 240);
}

TEST_F(Legibility, busyIndicatorIsLightOnADarkDesktop) {
    const DarkDesktop dark;
    openWindow();
    auto* const spinner = window->findChild<WaitingSpinnerWidget*>();
    QImage picture(spinner->size(), QImage::Format_ARGB32);
    picture.fill(QColor(45, 45, 48));
    spinner->render(&picture, QPoint(), QRegion(), QWidget::RenderFlags());
    EXPECT_GT(Extremes(picture).second, 200);
}

TEST_F(Legibility, veryLongNameWidensTheOpenListToHalfAScreenAtMost) {
    makeBackup(folder.Path("long.osbak"), {{std::string(200, 'W') + ".trk",
                                            independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 1)))}});
    openWindow();
    loadBackup(folder.Path("long.osbak"));
    auto& list = find<QComboBox>("comboBox_file");
    list.showPopup();
    const auto closed = qScopeGuard([&list] { list.hidePopup(); });
    EXPECT_LE(list.view()->window()->width(), 640) << "half of a screen of 1280 pixels";
    EXPECT_GE(list.view()->window()->width(), list.width());
}

TEST_F(Legibility, veryLongNameWidensNeitherTheListNorTheWindow) {
    openWindow();
    const QSize small = window->minimumSizeHint();
    const int list = find<QComboBox>("comboBox_file").sizeHint().width();
    closeWindow();
    makeBackup(folder.Path("long.osbak"), {{std::string(200, 'W') + ".trk",
                                            independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 1)))}});
    openWindow();
    loadBackup(folder.Path("long.osbak"));
    ASSERT_EQ(status(), "Load backup file successfully.");
    choose("comboBox_operation", "Load");
    ASSERT_EQ(status(), "Load successfully.");
    EXPECT_EQ(window->minimumSizeHint(), small);
    EXPECT_EQ(find<QComboBox>("comboBox_file").sizeHint().width(), list);
    EXPECT_LE(window->width(), 845);
}

} // namespace
