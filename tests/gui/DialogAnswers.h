#pragma once

#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <deque>
#include <functional>
#include <vector>

/// A message box as the operator saw it.
struct SeenBox {
    QString title;
    QString text;
    QString shownText; ///< the text that the box's label shows: differs when it is interpreted as markup
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    QString underneath; ///< the result of `note` while the box was open
};

/// A file dialog as the operator saw it.
struct SeenFileDialog {
    QString caption;
    QString folder;
    QStringList filters;
    bool saves = false;
};

/// Answers the modal dialogs while it lives: presses the button of a message box, types the prepared
/// name into a file dialog, and records each dialog.
class DialogAnswers final : public QObject {
    Q_OBJECT

  public:
    DialogAnswers();

    /// The next file dialog gets this name; an empty one cancels it. Without a prepared name it is cancelled.
    void typeFileName(const QString& name) { names.push_back(name); }

    /// Drops the prepared names that no dialog used.
    void forgetFileNames() { names.clear(); }

    /// Called while each message box is open; its result is recorded with the box.
    std::function<QString()> note;

    /// The dialogs since the last call.
    std::vector<SeenBox> takeBoxes();
    std::vector<SeenFileDialog> takeFileDialogs();

  private:
    void pollLater();
    void poll();
    void answer(QMessageBox& box);
    void answer(class QFileDialog& dialog);

    QPointer<QWidget> answered; ///< the current dialog, already answered
    std::deque<QString> names;
    std::vector<SeenBox> boxes;
    std::vector<SeenFileDialog> fileDialogs;
};
