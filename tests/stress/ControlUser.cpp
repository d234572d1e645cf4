#include "ControlUser.h"

#include <QApplication>
#include <QCheckBox>
#include <QSlider>
#include <QWheelEvent>

#include <algorithm>
#include <array>

namespace {

struct ParameterField {
    const char* name;
    std::vector<int> TrackPath::*values;
};
constexpr std::array<ParameterField, 3> kFields{{{"lineEdit_lineLength", &TrackPath::lengths},
                                                 {"lineEdit_lineWidth", &TrackPath::widths},
                                                 {"lineEdit_lineSpace", &TrackPath::spaces}}};

} // namespace

void ControlUser::turnSpinBox() {
    auto& box = stress.find<QSpinBox>(random.chance(2) ? "spinBox_pathId" : "spinBox_segmentId");
    const int before = box.value();
    box.setFocus();
    QTest::keyClick(&box, random.oneOf<Qt::Key>(
                              {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown}));
    checkChosen(box, before);
}

void ControlUser::typeIntoSpinBox() {
    const char* const name = random.chance(2) ? "spinBox_pathId" : "spinBox_segmentId";
    const auto& box = stress.find<QSpinBox>(name);
    const int before = box.value();
    stress.typeNumber(name, random.oneOf<std::string>({"1", "2", "3", "9", "10000", "0"}));
    checkChosen(box, before);
}

/// Checks that the selected path or segment exists and is the current one on the canvas.
void ControlUser::checkChosen(const QSpinBox& box, int before) {
    if (box.value() == before)
        return;
    const EditingState& state = stress.canvas().editingState();
    const auto path = static_cast<std::size_t>(state.currentPath);
    if (box.objectName() == QStringLiteral("spinBox_pathId")) {
        EXPECT_LE(box.value(), std::max<std::size_t>(stress.paths().size(), 1));
        EXPECT_TRUE(stress.paths().empty() || state.currentPath == box.value() - 1);
    } else if (path < stress.paths().size() && stress.paths()[path].points.size() > 1) {
        EXPECT_LT(box.value(), static_cast<int>(stress.paths()[path].points.size()));
        EXPECT_EQ(state.currentSegment, box.value() - 1);
    } else {
        EXPECT_EQ(box.value(), 1);
    }
}

void ControlUser::typeParameter() {
    const auto index = static_cast<std::size_t>(random.pick(static_cast<int>(kFields.size())));
    auto& field = stress.find<QLineEdit>(kFields.at(index).name);
    const QString before = field.text();
    field.setFocus();
    if (random.chance(3))
        field.selectAll();
    const std::string letters = "0123456789-+.,e x\b";
    const char letter = letters[static_cast<std::size_t>(random.pick(static_cast<int>(letters.size())))];
    if (letter == '\b' || random.chance(5))
        QTest::keyClick(&field, Qt::Key_Backspace);
    else
        QTest::keyClick(&field, letter);
    if (field.text() != before)
        checkParameter(index, field.text().toStdString());
}

/// Checks that the typed value is that of the selected segment, or of every segment in batch mode.
void ControlUser::checkParameter(std::size_t field, const std::string& text) {
    const int value = QString::fromStdString(text).toInt();
    const EditingState& state = stress.canvas().editingState();
    const auto& valuesOf = kFields.at(field).values;
    if (stress.find<QCheckBox>("checkBox_batchSetting").isChecked()) {
        for (const TrackPath& path : stress.paths())
            EXPECT_EQ(path.*valuesOf, std::vector<int>(path.points.size(), value));
    } else if (stress.canvas().segmentExists(state.currentPath, state.currentSegment)) {
        const TrackPath& path = stress.paths()[static_cast<std::size_t>(state.currentPath)];
        EXPECT_EQ((path.*valuesOf)[static_cast<std::size_t>(state.currentSegment)], value);
    }
}

void ControlUser::turnWheel() {
    constexpr int kNotch = 120;
    auto& widget = stress.find<QWidget>(
        random.oneOf<const char*>({"label_mask", "label_mask", "scrollArea", "horizontalSlider_resizeImage",
                                   "spinBox_pathId", "spinBox_segmentId", "lineEdit_lineLength",
                                   "comboBox_file", "comboBox_operation", "comboBox_sensor"}));
    if (!widget.isEnabled())
        return;
    const QPoint place(widget.width() / 2, widget.height() / 2);
    const QPoint turn(0, random.chance(2) ? kNotch : -kNotch);
    const auto* const list = qobject_cast<QComboBox*>(&widget);
    const int before = list != nullptr ? list->currentIndex() : 0;
    const Qt::KeyboardModifiers modifiers = random.chance(2) ? Qt::ControlModifier : Qt::NoModifier;
    QWheelEvent event(place, widget.mapToGlobal(place), QPoint(), turn, stress.held, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
    EXPECT_EQ(list != nullptr ? list->currentIndex() : 0, before);
}

void ControlUser::moveSlider() {
    auto& slider = stress.find<QSlider>("horizontalSlider_resizeImage");
    slider.setFocus();
    QTest::keyClick(&slider,
                    random.oneOf<Qt::Key>({Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown,
                                           Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End}));
}

void ControlUser::resizeWindow() {
    stress.window->resize(300 + random.pick(900), 200 + random.pick(700));
}

void ControlUser::pressSomeKey() {
    const auto widgets = stress.window->findChildren<QWidget*>();
    QWidget* const widget = widgets[random.pick(widgets.size())];
    if (qobject_cast<QComboBox*>(widget) != nullptr || !widget->isVisible() || !widget->isEnabled())
        return;
    widget->setFocus();
    QTest::keyClick(widget,
                    random.oneOf<Qt::Key>({Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Escape, Qt::Key_Return,
                                           Qt::Key_Delete, Qt::Key_Home, Qt::Key_F1, Qt::Key_A}));
}

void ControlUser::pressZoomKey() {
    if (!stress.window->isEnabled())
        return;
    QApplication::setActiveWindow(stress.window.get());
    QTest::keyClick(stress.window.get(),
                    random.oneOf<Qt::Key>({Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Equal, Qt::Key_0, Qt::Key_1}),
                    Qt::ControlModifier);
}

void ControlUser::pressInWindow(Qt::KeyboardModifiers modifiers) {
    if (!stress.window->isEnabled())
        return;
    QApplication::setActiveWindow(stress.window.get());
    const int depth = stress.canvas().document().undoDepth();
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : stress.window.get(), Qt::Key_Z, modifiers);
    stress.count(stress.canvas().document().undoDepth() < depth ? "  steps taken back"
                                                                : "  no step taken back");
}
