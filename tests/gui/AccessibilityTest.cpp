#include "CanvasFixture.h"
#include "WindowTest.h"

#include <QAccessible>
#include <QLabel>

#include <filesystem>
#include <functional>

namespace {

using ::testing::HasSubstr;

/// The names and descriptions that a screen reader finds in the real window.
class Accessibility : public WindowTest {
  protected:
    using Visit = std::function<void(QAccessibleInterface& element)>;

    void walk(const Visit& visit) { walk(*QAccessible::queryAccessibleInterface(window.get()), visit); }

    static std::string spoken(QAccessibleInterface& element, QAccessible::Text kind) {
        return element.text(kind).toStdString();
    }
    std::string canvasDescription() {
        return spoken(*QAccessible::queryAccessibleInterface(&canvas()), QAccessible::Description);
    }
    std::string nameOf(const char* widget) {
        return spoken(*QAccessible::queryAccessibleInterface(&find<QWidget>(widget)), QAccessible::Name);
    }
    void loadTrack(const std::string& name) {
        WriteFile(folder.Path(name), independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, 100))));
        loadExternal(folder.Path(name));
        ASSERT_EQ(status(), "Load successfully.");
    }

  private:
    static void walk(QAccessibleInterface& element, const Visit& visit) {
        visit(element);
        for (int child = 0; child < element.childCount(); ++child)
            if (QAccessibleInterface* const below = element.child(child))
                walk(*below, visit);
    }
};

TEST_F(Accessibility, everyControlHasAName) {
    openWindow();
    int controls = 0;
    walk([&](QAccessibleInterface& element) {
        const auto* const widget = qobject_cast<QWidget*>(element.object());
        if (widget == nullptr || widget->focusPolicy() == Qt::NoFocus || widget->focusProxy() != nullptr)
            return;
        ++controls;
        EXPECT_NE(spoken(element, QAccessible::Name), "")
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    });
    EXPECT_GE(controls, 20);
}

TEST_F(Accessibility, spokenTextsHaveNoMarkup) {
    openWindow();
    loadTrack("<b>bold & more<i>.trk");
    int texts = 0;
    walk([&](QAccessibleInterface& element) {
        for (const auto kind : {QAccessible::Name, QAccessible::Description, QAccessible::Help}) {
            std::string text = spoken(element, kind);
            ++texts;
            EXPECT_EQ(text.find("<span>"), std::string::npos) << text;
            EXPECT_EQ(text.find("&amp;"), std::string::npos) << text;
            EXPECT_EQ(text.find("&lt;"), std::string::npos) << text;
        }
    });
    EXPECT_GE(texts, 100);
    EXPECT_EQ(spoken(*QAccessible::queryAccessibleInterface(&find<QLabel>("label_fileName")),
                     QAccessible::Description),
              "External - <b>bold & more<i>.trk");
}

TEST_F(Accessibility, labelsBelongToTheirControls) {
    openWindow();
    for (const auto& [label, control] : {std::pair{"label_sensorIP", "comboBox_sensor"},
                                         {"label_file", "comboBox_file"},
                                         {"label_operation", "comboBox_operation"},
                                         {"label_heightMin", "lineEdit_heightMin"},
                                         {"label_heightMax", "lineEdit_heightMax"},
                                         {"label_scale", "horizontalSlider_resizeImage"},
                                         {"label_path", "spinBox_pathId"},
                                         {"label_segment", "spinBox_segmentId"},
                                         {"label_length", "lineEdit_lineLength"},
                                         {"label_width", "lineEdit_lineWidth"},
                                         {"label_space", "lineEdit_lineSpace"}})
        EXPECT_EQ(find<QLabel>(label).buddy(), &find<QWidget>(control)) << label;
    EXPECT_EQ(nameOf("spinBox_segmentId"), "Segment");
    EXPECT_EQ(nameOf("toolButton_reset"), "Reset");
    EXPECT_EQ(nameOf("label_mask"), "Height map");
}

TEST_F(Accessibility, canvasHasNameAndDescription) {
    openWindow();
    EXPECT_EQ(canvasDescription(), "No track is open.");
    loadTrack("cover.trk");
    EXPECT_THAT(canvasDescription(), HasSubstr("Track cover.trk, paths: 1. Chosen: segment 1 of path 1."));
    typeNumber("spinBox_segmentId", "2");
    EXPECT_THAT(canvasDescription(), HasSubstr("Chosen: segment 2 of path 1."));
    const QPointF point = paths().at(0).points.at(1);
    const QPoint pixel(qRound(point.x() * canvas().width()), qRound(point.y() * canvas().height()));
    Mouse(&canvas()).Move(pixel);
    EXPECT_THAT(canvasDescription(), HasSubstr("Under the cursor: point 2 of path 1, at " +
                                               std::to_string(pixel.x()) + ", " + std::to_string(pixel.y())));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&canvas())->role(), QAccessible::Canvas);
    for (const char* const key :
         {"arrows move it", "Delete removes it", "Insert puts a point", "Backspace", "Enter closes the paths",
          "Escape", "N and Shift+N", "P and Shift+P", "A adds a point", "Ctrl+C", "F6"})
        EXPECT_THAT(canvasDescription(), HasSubstr(key));
}

} // namespace
