#include "workflow/SourceWorkflow.h"

#include "basalt/bStatus.h"
#include "log/Log.h"
#include "workflow/TrackOperations.h"
#include "workflow/WaitCursor.h"
#include "workflow/WorkProtection.h"
#include "workflow/WorkingFiles.h"

#include <QCoreApplication>

#include <set>

namespace {

// Line numbers known from existing reports: they stay when the code around them moves.
constexpr int kNoBackupFileLine = 853;
constexpr int kNotConnectedLine = 867;

constexpr const char* kSourceFailureFile = "mainwindow";

Ve::Exception NothingToUpload(int line, const char* message) {
    return {line, kSourceFailureFile, bERROR_FILE, "MainWindow::on_toolButton_upload_clicked", "%s", message};
}

/// The strings are translated in the window's context.
QString Text(const char* text) {
    return QCoreApplication::translate("MainWindow", text);
}

void RequireSuccess(const Ve::Exception& result) {
    if (result.Status() != bOK)
        throw Ve::Exception(result);
}

} // namespace

SourceWorkflow::SourceWorkflow(Context context)
    : client(context.client), tracks(context.tracks), view(context.view), protection(context.protection) {
}

void SourceWorkflow::FillSourceList() {
    view.clearSources();
    OstraSdkClient::DiscoverOstraServers(servers);
    view.showSources(servers);
}

bool SourceWorkflow::IsOpen() const {
    return client.IsConnected() || state == State::BackupOpen;
}

void SourceWorkflow::Enter(State newState) {
    state = newState;
    if (state == State::ServerChosen || state == State::BackupChosen)
        leftOut = {};
    view.showConnectionAction(Action());
}

SourceView::ConnectionAction SourceWorkflow::Action() const {
    switch (state) {
    case State::ServerChosen:
        return SourceView::ConnectionAction::Connect;
    case State::ServerOpen:
        return SourceView::ConnectionAction::Disconnect;
    case State::BackupChosen:
    case State::BackupOpen:
        break;
    }
    return SourceView::ConnectionAction::LoadBackup;
}

void SourceWorkflow::CloseBackupFile() {
    if (state == State::BackupOpen)
        Enter(State::BackupChosen);
}

void SourceWorkflow::ShowChosenSource(bool backupFile) {
    view.showUploadTarget(backupFile);
    Enter(backupFile ? State::BackupChosen : State::ServerChosen);
}

void SourceWorkflow::ChooseSource(bool backupFile) {
    view.showUploadTarget(backupFile);
    client.Disconnect();
    tracks.CloseTrack();
    CloseBackupFile();
    tracks.RefreshTrackList();
    view.showOpenSource({}, {});
    tracks.ResetPaths();
    view.enableOperations(false);
    ShowChosenSource(backupFile);
}

void SourceWorkflow::PressConnectionButton() {
    CloseBackupFile();
    switch (Action()) {
    case SourceView::ConnectionAction::Connect:
        return Connect();
    case SourceView::ConnectionAction::Disconnect:
        return Disconnect();
    case SourceView::ConnectionAction::LoadBackup:
        return LoadBackup();
    }
}

/// A track of the workspace is closed with it; an external one stays open.
void SourceWorkflow::Disconnect() {
    client.Disconnect();
    view.enableSources(true);
    Enter(State::ServerChosen);
    tracks.CloseWorkspaceTrack();
    view.showStatus(Text("Disconnect successfully."));
    view.enableOperations(false);
    view.showOpenSource({}, {});
    tracks.RefreshTrackList();
}

void SourceWorkflow::LoadBackup() {
    client.Disconnect();
    const QString chosen = view.askForBackup();
    backupFile = chosen.toStdString();
    if (chosen.isEmpty())
        return;
    const WaitCursor waiting;
    Unpack();
    operatorsBackup = backupFile;
    tracks.CloseWorkspaceTrack();
    Enter(State::BackupOpen);
    view.showStatus(Text("Load backup file successfully."));
    tracks.RefreshTrackList();
    view.enableOperations(true);
    view.showOpenSource(QStringLiteral("Backup File"), chosen);
}

/// The paths of an open track of the workspace, and its tracks that were not sent, are kept once the backup
/// is known to be good, and before its workspace replaces them.
void SourceWorkflow::Unpack() {
    for (const std::string& file : std::set{backupFile, operatorsBackup})
        if (IsInWorkingFolder(file)) // it is removed with the folder
            protection.KeepDeleted(file);
    leftOut = {};
    LeftOut found = UnpackBackup(backupFile);
    if (HasWorkspace()) {
        tracks.KeepUnsavedOfWorkspace();
        protection.KeepUnsent();
    }
    found.Add(UnpackWorkspace());
    leftOut = std::move(found);
}

void SourceWorkflow::Connect() {
    const auto chosen = static_cast<std::size_t>(view.chosenSourceIndex());
    if (chosen >= servers.size())
        throw Ve::Exception(__LINE__, kSourceFailureFile, bERROR_NOT_CONNECTED,
                            "MainWindow::on_pushButton_sensor_clicked", "Please select a sensor server.");
    const WaitCursor waiting;
    client.Connect(servers[chosen].address, servers[chosen].controlPort);
    if (IsServerBackup(operatorsBackup)) // the download replaces it
        protection.KeepReplaced(operatorsBackup);
    view.showStatus(Text("Connecting to the sensor ..."));
    view.requestBackup(QString::fromLatin1(kServerBackup));
}

void SourceWorkflow::FinishBackup(const Ve::Exception& result) {
    RequireSuccess(result);
    const WaitCursor waiting;
    backupFile = kServerBackup;
    Unpack();
    operatorsBackup.clear();
    tracks.CloseWorkspaceTrack();
    if (state == State::ServerChosen) {
        Enter(State::ServerOpen);
        view.enableSources(false);
        view.showStatus(Text("Connect successfully."));
    }
    tracks.RefreshTrackList();
    view.enableOperations(true);
    CloseBackupFile();
    view.showOpenSource(QStringLiteral("Sensor"), view.chosenSource());
}

void SourceWorkflow::FinishRestore(const Ve::Exception& result) {
    RequireSuccess(result);
    protection.Unsent().Clear();
    view.showStatus(Text("Restoring successfully."));
}

void SourceWorkflow::Upload() {
    if (view.isBackupFileChosen())
        SaveToBackupFile();
    else
        SyncToServer();
}

void SourceWorkflow::SaveToBackupFile() {
    if (state != State::BackupOpen)
        throw NothingToUpload(kNoBackupFileLine, "Please open a backup file firstly.");
    const WaitCursor waiting;
    view.showStatus(Text("Saving the backup file..."));
    PackBackup(backupFile);
    protection.Unsent().Clear();
    view.showStatus(Text("Saved the backup file successfully."));
}

/// A server whose backup could not be fetched is connected, but the working folders do not belong to it and
/// must not be sent to it.
void SourceWorkflow::SyncToServer() {
    if (!client.IsConnected() || state != State::ServerOpen)
        throw NothingToUpload(kNotConnectedLine,
                              "Please connect to Ostra server or load a backup file firstly.");
    const WaitCursor waiting;
    PackBackup(backupFile);
    view.showStatus(Text("Restoring the sensor ..."));
    view.requestRestore(QString::fromStdString(backupFile));
}

void SourceWorkflow::Reset() {
    client.Disconnect();
    tracks.CloseTrack();
    CloseBackupFile();
    tracks.RefreshTrackList();
    FillSourceList();
    view.showOpenSource({}, {});
    view.enableSources(true);
    view.enableConnection(true); // an earlier reset may have failed
    tracks.ResetPaths();
    view.enableOperations(false);
    view.showStatus(Text("Reset successfully."));
}

void SourceWorkflow::Leave() {
    if (state == State::ServerOpen)
        DisconnectAnyway();
    protection.KeepUnsaved();
    protection.KeepUnsent();
    if (IsServerBackup(operatorsBackup) || IsInWorkingFolder(operatorsBackup))
        protection.KeepDeleted(operatorsBackup);
    RemoveWorkingFiles();
}

/// The server may have stopped; the window closes anyway.
void SourceWorkflow::DisconnectAnyway() {
    try {
        client.Disconnect();
    } catch (const Ve::Exception& failure) {
        LOG_LINE(ERROR) << "(" << bStatus_Name(failure.Status()) << ") " << failure.what();
    }
}
