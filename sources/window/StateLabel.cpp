#include "window/StateLabel.h"

#include "window/ControlNames.h"
#include "window/mainwindow.h"

namespace {

QString NamesOf(const LeftOut& links) {
    QStringList names;
    for (const std::string& name : links.names)
        names << QString::fromStdString(name);
    if (links.count > names.size())
        names << QStringLiteral("...");
    return names.join(QStringLiteral(", "));
}

} // namespace

StateLabel::StateLabel(const QString& keptFolder, QWidget* parent)
    : QLabel(parent),
      toolTipText(MainWindow::tr("Copies of what is discarded are kept in %1").arg(keptFolder)) {
    setObjectName(QStringLiteral("label_state"));
    setTextFormat(Qt::PlainText);
    SetPlainToolTip(*this, toolTipText);
}

void StateLabel::showState(bool modified, bool unsent, const LeftOut& links) {
    QStringList states;
    if (modified)
        states << MainWindow::tr("Unsaved");
    else if (unsent)
        states << MainWindow::tr("Saved, not sent");
    QString toolTip = toolTipText;
    if (links.count > 0) {
        states << MainWindow::tr("Links left out");
        toolTip += QStringLiteral(". ") + MainWindow::tr("Links left out: %1").arg(NamesOf(links));
    }
    setText(states.join(QStringLiteral("; ")));
    SetPlainToolTip(*this, toolTip);
}

void StateLabel::showCloseRefused() {
    setText(MainWindow::tr("Cannot close while the server is at work"));
}
