#pragma once

#include <QObject>

class QComboBox;
class QWidget;

/// Keeps an accidental turn of the wheel, or a key meant for something else, from choosing an entry: a list's
/// choice takes effect immediately.
class InputGuard final : public QObject {
  public:
    using QObject::QObject;

    /// The wheel over this list or spin box does nothing.
    void ignoreWheel(QWidget& control);
    /// On the closed list, letters and arrows open it instead of choosing.
    void openByKeys(QComboBox& list);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QComboBox* openedByKeys = nullptr;
};
