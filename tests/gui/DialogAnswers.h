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
    QString shownText; ///< what the box's label makes of it: the text itself unless it takes it for markup
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    QString underneath; ///< what `note` answered while the box stood
};

/// A file dialog as the operator saw it.
struct SeenFileDialog {
    QString caption;
    QString folder;
    QStringList filters;
    bool saves = false;
};

/// Sits in front of the modal dialogs while it lives: presses the button of a message box, types the prepared
/// name into a file dialog, and remembers what it saw.
class DialogAnswers final : public QObject {
    Q_OBJECT

  public:
    DialogAnswers();

    /// The next file dialog gets this name; an empty one cancels it. Without a prepared name it is cancelled.
    void typeFileName(const QString& name) { names.push_back(name); }

    /// Takes back the names that no dialog asked for.
    void forgetFileNames() { names.clear(); }

    /// Called while each message box stands; its answer is kept with the box.
    std::function<QString()> note;

    /// What was seen since the last call.
    std::vector<SeenBox> takeBoxes();
    std::vector<SeenFileDialog> takeFileDialogs();

  private:
    void lookLater();
    void look();
    void answer(QMessageBox& box);
    void answer(class QFileDialog& dialog);

    QPointer<QWidget> answered; ///< the dialog at hand has its answer
    std::deque<QString> names;
    std::vector<SeenBox> boxes;
    std::vector<SeenFileDialog> fileDialogs;
};
