#pragma once

#include <QString>

class QWidget;

namespace Ui {
class MainWindow;
}

/// Gives each control the name by which a screen reader calls it, and each label the control that it is for.
void NameControls(Ui::MainWindow& ui);

/// Gives a widget a tool tip that shows the text literally, even if it looks like markup. A screen reader
/// gets the text without the markup that this needs.
void SetPlainToolTip(QWidget& widget, const QString& text);
