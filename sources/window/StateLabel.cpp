#include "window/StateLabel.h"

#include "window/ControlNames.h"
#include "window/mainwindow.h"

StateLabel::StateLabel(const QString& keptFolder, QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("label_state"));
    setTextFormat(Qt::PlainText);
    SetPlainToolTip(*this, MainWindow::tr("Copies of what is discarded are kept in %1").arg(keptFolder));
}

void StateLabel::showState(bool modified, bool unsent) {
    if (modified)
        setText(MainWindow::tr("Unsaved"));
    else
        setText(unsent ? MainWindow::tr("Saved, not sent") : QString());
}
