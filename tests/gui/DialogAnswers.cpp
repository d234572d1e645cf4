#include "DialogAnswers.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextDocument>
#include <QTimer>

#include <utility>

namespace {

constexpr int kPollInterval = 5; // milliseconds

QString Shown(const QMessageBox& box) {
    const auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    const bool markup = label->textFormat() == Qt::RichText ||
                        (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(label->text()));
    if (!markup)
        return label->text();
    QTextDocument document;
    document.setHtml(label->text());
    return document.toPlainText();
}

} // namespace

DialogAnswers::DialogAnswers() {
    pollLater();
}

// A new timer each time: an answer may open the next dialog, whose event loop runs inside the
// answer, and a timer does not fire again while it is being served.
void DialogAnswers::pollLater() {
    QTimer::singleShot(kPollInterval, this, &DialogAnswers::poll);
}

std::vector<SeenBox> DialogAnswers::takeBoxes() {
    return std::exchange(boxes, {});
}

std::vector<SeenFileDialog> DialogAnswers::takeFileDialogs() {
    return std::exchange(fileDialogs, {});
}

void DialogAnswers::poll() {
    pollLater();
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal == answered)
        return;
    answered = modal;
    if (auto* box = qobject_cast<QMessageBox*>(modal))
        answer(*box);
    else if (auto* dialog = qobject_cast<QFileDialog*>(modal))
        answer(*dialog);
}

void DialogAnswers::answer(QMessageBox& box) {
    const bool ofFileDialog = qobject_cast<QFileDialog*>(box.parentWidget()) != nullptr;
    if (!ofFileDialog)
        boxes.push_back({box.windowTitle(), box.text(), Shown(box), box.icon(), box.standardButtons(),
                         note ? note() : QString()});
    QAbstractButton* const yes = box.button(QMessageBox::Yes);
    QTest::mouseClick(yes != nullptr ? yes : box.button(QMessageBox::Ok), Qt::LeftButton);
}

void DialogAnswers::answer(QFileDialog& dialog) {
    fileDialogs.push_back({dialog.windowTitle(), dialog.directory().absolutePath(), dialog.nameFilters(),
                           dialog.acceptMode() == QFileDialog::AcceptSave});
    const QString name = names.empty() ? QString() : names.front();
    if (!names.empty())
        names.pop_front();
    auto* const field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    QApplication::setActiveWindow(&dialog); // as a desktop does: keys go to the dialog
    field->setFocus();
    if (name.isEmpty()) {
        QTest::keyClick(field, Qt::Key_Escape);
        return;
    }
    field->setText(name);
    QTest::keyClick(field, Qt::Key_Return);
}
