#pragma once

#include <QMainWindow>

#include <memory>

namespace Ui {
class MainWindow;
}

/// The program's only window.
class MainWindow : public QMainWindow {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

  private:
    std::unique_ptr<Ui::MainWindow> ui;
};
