#pragma once

#include "basalt/Exception.h"
#include "cinder/TarName.h"
#include "link/OstraSdkClient.h"
#include "workflow/SourceView.h"

#include <string>
#include <vector>

class TrackOperations;
class WorkProtection;

/// Where tracks come from: connects to sensor servers and disconnects, opens backup files, and sends the
/// workspace back. Failures are thrown as Ve::Exception with the text that the operator is shown; the steps
/// before the failing one are not undone.
class SourceWorkflow {
  public:
    /// What the workflow works with; all are borrowed and outlive the object.
    struct Context {
        OstraSdkClient& client; ///< used here only while no request of the view is running
        TrackOperations& tracks;
        SourceView& view;
        WorkProtection& protection;
    };

    explicit SourceWorkflow(Context context);

    /// Looks for servers, which takes up to a second, and lists them.
    void FillSourceList();

    /// Whether there is an unpacked workspace: connected to a server, or a backup file is open.
    [[nodiscard]] bool IsOpen() const;

    /// The links and special files of the backup that is open: they are not in the working folders, so they
    /// will be missing from what is saved.
    [[nodiscard]] const LeftOut& LinksLeftOut() const { return leftOut; }

    /// Adapts the controls to the chosen entry of the list of sources, before anything is open.
    void ShowChosenSource(bool backupFile);

    // What the operator does.
    /// Another source closes everything. @param backupFile whether it is "Backup File"
    void ChooseSource(bool backupFile);
    void PressConnectionButton();
    void Upload();
    void Reset();

    // How a request of the view ended; status 1 is success.
    void FinishBackup(const Ve::Exception& result);
    void FinishRestore(const Ve::Exception& result);

    /// Disconnects if connected, and removes the working files after keeping copies of what would be lost. A
    /// failure is logged.
    void Leave();

  private:
    /// Which kind of source is chosen, and whether its workspace is open.
    enum class State { ServerChosen, ServerOpen, BackupChosen, BackupOpen };

    void Enter(State newState);
    void CloseBackupFile();
    [[nodiscard]] SourceView::ConnectionAction Action() const;
    void Connect();
    void Disconnect();
    void Unpack();
    void LoadBackup();
    void SaveToBackupFile();
    void SyncToServer();
    void DisconnectAnyway();

    OstraSdkClient& client;
    TrackOperations& tracks;
    SourceView& view;
    WorkProtection& protection;
    State state = State::ServerChosen;
    std::vector<OstraServerInfo> servers; ///< in the order of the list
    std::string backupFile;               ///< the backup in use
    LeftOut leftOut;
    std::string operatorsBackup; ///< the backup that the operator opened last, if any
};
