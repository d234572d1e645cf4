#pragma once

#include "basalt/Exception.h"
#include "canvas/qmaskwidget.h"
#include "document/TrackDocument.h"
#include "link/OstraSdkClient.h"

#include <QMainWindow>

#include <functional>
#include <memory>

class CanvasKeys;
class ReadOuts;
class RulerControl;
class SegmentPanel;
class SourcePanel;
class SourceWorkflow;
class TrackOperations;
class StateLabel;
class TrackPanel;
class UndoActions;
class ViewNavigation;
class ViewScale;
class WaitingSpinnerWidget;
class WorkProtection;
class WorkerThread;

namespace Ui {
class MainWindow;
}

/// The program's only window: chooses where tracks come from, opens and saves them, and sets the parameters
/// of the paths drawn on its canvas. It only connects the controls with the panels and workflows that do the
/// work. Its slots catch every failure, log it and show it in a box.
class MainWindow final : public QMainWindow, public RulerOwner {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget* parent = nullptr);
    /// Removes the working folders and files.
    ~MainWindow() override;

    [[nodiscard]] bool rulerShown() const override;
    void refreshRuler() override;

  signals:
    /// Has the worker restore the server from a backup file.
    void SignalRestore(const QString& fileName);
    /// Has the worker download the server's backup into a file.
    void SignalBackup(const QString& fileName);

    // The order of signals and slots is their order in the meta-object, which is kept.
  private slots:
    void on_horizontalSlider_resizeImage_valueChanged(int value);
    void on_pushButton_deleteLast_clicked();
    void on_pushButton_deleteAll_clicked();
    void on_pushButton_getRuler_clicked();
    void on_checkBox_batchSetting_clicked(bool checked);
    void on_spinBox_pathId_valueChanged(int number);
    void on_spinBox_segmentId_valueChanged(int number);
    void on_comboBox_lineType_currentIndexChanged(int index);
    void on_lineEdit_lineLength_textChanged(const QString& text);
    void on_lineEdit_lineWidth_textChanged(const QString& text);
    void on_lineEdit_lineSpace_textChanged(const QString& text);
    void on_pushButton_sensor_clicked();
    void on_comboBox_file_currentIndexChanged(const QString& text);
    void on_comboBox_operation_currentIndexChanged(const QString& text);
    void on_toolButton_upload_clicked();
    void on_toolButton_reset_clicked();
    void slot_comboBox_sensor_currentIndexChanged(const QString& text);
    void SlotProcessRestore(const Ve::Exception& result);
    void SlotProcessBackup(const Ve::Exception& result);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void SetUpPanels();
    void SetUpCanvas();
    void SetUpWorker();
    void SetUpAdditions();
    void SetUpKeys();
    void ShowState();
    /// Runs a slot's body. A Ve::Exception from it is logged and shown, after `onFailure` has restored the
    /// controls; other exceptions pass through.
    void RunSlot(const std::function<void()>& body, const std::function<void()>& onFailure = {});
    /// @return whether the operation of this name completed
    bool RunOperation(const QString& operation);

    const std::unique_ptr<Ui::MainWindow> ui;
    TrackDocument document;
    OstraSdkClient client; ///< used by the worker, not here, while the spinner spins
    std::unique_ptr<WorkProtection> protection;
    std::unique_ptr<RulerControl> ruler;
    std::unique_ptr<ViewScale> scale;
    std::unique_ptr<SegmentPanel> segments;
    std::unique_ptr<TrackPanel> trackPanel;
    std::unique_ptr<SourcePanel> sourcePanel;
    std::unique_ptr<TrackOperations> tracks;
    std::unique_ptr<SourceWorkflow> sources;
    std::unique_ptr<WorkerThread> worker;
    std::unique_ptr<UndoActions> undoActions;
    std::unique_ptr<ViewNavigation> navigation;
    std::unique_ptr<CanvasKeys> canvasKeys;
    std::unique_ptr<ReadOuts> readOuts;
    WaitingSpinnerWidget* spinner = nullptr; ///< this and the following are children of the window
    StateLabel* stateLabel = nullptr;
};
