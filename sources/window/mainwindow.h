#pragma once

#include "basalt/Exception.h"
#include "canvas/RulerOwner.h"
#include "document/SegmentParameter.h"
#include "document/formats/TrackInfo.h"
#include "link/OstraSdkClient.h"

#include <QImage>
#include <QMainWindow>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class WaitingSpinnerWidget;
class WorkerThread;

namespace Ui {
class MainWindow;
}

/// The program's only window: chooses where tracks come from, opens and saves them, and sets the parameters
/// of the paths drawn on its canvas. Its slots are where failures end: each is logged and shown in a box.
class MainWindow final : public QMainWindow, public RulerOwner {
    Q_OBJECT

  public:
    explicit MainWindow(QWidget* parent = nullptr);
    /// Leaves nothing of the working folders and files behind.
    ~MainWindow() override;

    [[nodiscard]] bool rulerShown() const override { return showsRuler; }
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
    void SetUpFileNames();
    void SetUpCanvas();
    void SetUpSegmentControls();
    void SetUpWorker();

    /// Runs a slot's body. A Ve::Exception from it is logged and shown, after `onFailure` has put things
    /// right; any other passes through.
    void RunSlot(const std::function<void()>& body, const std::function<void()>& onFailure = {});
    static void LogFailure(const Ve::Exception& failure);
    /// The "Error" box; the text is shown as it stands.
    void ShowError(const QString& text);

    /// Looks for servers, which takes up to a second.
    void FillSourceList();
    [[nodiscard]] bool SourceIsOpen() const;
    /// Connected to a server whose workspace is in the working folders.
    [[nodiscard]] bool ServerIsOpen() const;
    /// Both fit the controls to an entry of the list of sources.
    void ShowUploadTarget(const QString& source);
    void ShowConnection(const QString& source);
    void ConnectServer();
    void DisconnectServer();
    void LoadBackup();
    void SaveToBackupFile();
    void SyncToServer();
    void LeaveServer();
    void CloseTrack();
    void ShowStatusNow(const QString& text);

    void RefreshTrackList();
    /// @throws Ve::Exception; the track shown before stays as it was while the new one's head and height map
    /// cannot be read
    void LoadTrack(const QString& path);
    void LoadPaths(const QString& path);
    /// Writes the canvas's paths, with the rest of `source`, to `target`.
    void SaveTrack(const QString& source, const QString& target);
    void SaveInPlace(const QString& track);
    void WriteTrack(const QString& source, const QString& target);
    void ShowFileName(const QString& text);
    void ShowHeights(double lowest, double highest);
    void FitToView();

    // Each returns whether it came to its end, which the status bar then tells.
    bool RunOperation(const QString& operation);
    bool LoadChosenTrack();
    bool SaveOpenTrack();
    bool SaveOpenTrackAs();
    bool DeleteChosenTrack();
    [[nodiscard]] bool HasTrackToSave();
    void SaveExternalTrack(const QString& path);
    void ReturnToNormal();

    void resetSegmentControls();
    void ShowSegment();
    void SetParameter(SegmentParameter parameter, int value);
    void SetParameterAndRefresh(SegmentParameter parameter, const QString& text);
    [[nodiscard]] int PathCount() const;
    /// Points of a path (from 0); none of a path that does not exist.
    [[nodiscard]] int PointCount(int path) const;

    const std::unique_ptr<Ui::MainWindow> ui;

    TrackInfo info;   ///< of the open track
    QImage heightMap; ///< of the open track; null while there is none
    bool showsRuler = true;
    bool showingSegment = false; ///< the controls are being filled, nobody sets a parameter

    std::string currentTrackPath; ///< of the open track, as it was opened
    bool trackLoaded = false;
    bool externalTrack = false; ///< the open track is not one of the workspace
    QStringList trackFiles;     ///< names in the workspace's track folder, as last listed

    std::vector<OstraServerInfo> servers; ///< in the order of the source list
    std::string backupFilePath;           ///< the backup in use
    bool backupFileOpen = false;          ///< the source is a backup file that is open
    OstraSdkClient client;                ///< not to be used while the spinner spins: the worker uses it then
    std::unique_ptr<WorkerThread> worker;
    WaitingSpinnerWidget* spinner = nullptr; ///< a child of the window
};
