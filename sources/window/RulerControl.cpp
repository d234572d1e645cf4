#include "window/RulerControl.h"

#include "window/mainwindow.h"

void RulerControl::toggle() {
    shown = !shown;
    button.setText(shown ? MainWindow::tr("Hide Ruler") : MainWindow::tr("Show Ruler"));
    if (shown)
        refresh();
    else
        canvas.clearRulerMarks();
}

void RulerControl::refresh() {
    if (!canvas.document().hasImage())
        return;
    const QSize size = canvas.document().shownSize();
    canvas.computeRulerMarks(size.width(), size.height());
}
