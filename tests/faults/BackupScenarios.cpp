#include "Scenario.h"

#include "TemporaryFolder.h"

#include <QPushButton>

namespace {

constexpr int kWidth = 240;
constexpr int kHeight = 160;
const std::string kBackup = "station.osbak";

const independent::Track& Original() {
    static const independent::Track track = OperatorTrack(kWidth, kHeight);
    return track;
}

/// The tracks in the backup on the desk.
const FileTree& Tracks() {
    static const FileTree tracks = {{"a.trk", independent::BinaryFile(Original())}, {"b.trk", "another's"}};
    return tracks;
}

FileTree Desk() {
    return {{kBackup, BackupArchive(Tracks())}, {"mine.trk", "mine"}, {"mine.osbak", "mine too"}};
}

bool IsEditedSet(FileTree tracks) {
    const bool edited = IsEdited(tracks["a.trk"], Original());
    tracks["a.trk"] = Tracks().at("a.trk");
    return edited && tracks == Tracks();
}

/// Whether an archive can be read and its tracks satisfy a predicate.
template<typename Read, typename Passes>
bool Holds(const std::string& archive, Read read, Passes passes) {
    try {
        return passes(read(archive));
    } catch (const std::exception&) {
        return false;
    }
}

/// Checks that every unpacked track is a complete one of these, and that all exist if finished.
void CheckUnpacked(Problems& problems, const FileTree& tracks, bool finished) {
    for (const auto& [name, content] : FilesIn(kTracks))
        if (LooksLikeContent(name) && (tracks.count(name) == 0 || tracks.at(name) != content))
            problems.push_back(kTracks + name + " is incomplete");
    if (finished && FilesIn(kTracks) != tracks)
        problems.push_back(kTracks + " differs from the backup");
}

FileTree OnDesk() {
    return InFolder(kDesk, Desk());
}

bool IsEither(const FileTree& tracks) {
    return tracks == Tracks() || IsEditedSet(tracks);
}

/// Checks the intermediate workspace archive, and the edited workspace itself.
void CheckPacked(Problems& problems) {
    const std::string inner = FileContent("./TmpDirBackup/workspaces/Workspace.osws");
    if (!Holds(inner, TracksInWorkspace, IsEither))
        problems.emplace_back("Workspace.osws is broken");
    if (!IsEditedSet(FilesIn(kTracks)))
        problems.emplace_back("the edited workspace has changed");
}

void EditTrack(WindowOperator& window) {
    window.LoadTrack("a.trk");
    window.Edit();
    window.Choose("comboBox_operation", "Save");
    window.Expect("Save successfully.");
}

/// Repeats the discovery, since on a busy machine the first answer may come too late.
void FindServer(WindowOperator& window) {
    constexpr int kAttempts = 10;
    for (int attempt = 1; window.Text("pushButton_sensor") != "Connect Sensor"; ++attempt) {
        if (attempt == kAttempts)
            throw std::runtime_error("no server was found");
        window.Click("toolButton_reset");
    }
}

/// The window is disabled while the worker runs.
void AwaitWorker(WindowOperator& window) {
    if (!window.Await([&window] { return window.IsEnabled(); }))
        throw std::runtime_error("the worker does not end");
}

void ConnectSensor(WindowOperator& window) {
    window.Click("pushButton_sensor");
    AwaitWorker(window);
}

/// "Save to Backup File" after an edit.
class SaveBackup final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + kBackup);
        EditTrack(window);
    }
    void Operate(WindowOperator& window) const override { window.Click("toolButton_upload"); }
    [[nodiscard]] std::string Success() const override { return "Saved the backup file successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), kBackup, finished,
                    [](const std::string& archive) { return Holds(archive, TracksInBackup, IsEditedSet); });
        CheckPacked(problems);
        return problems;
    }
};

/// "Load Backup" over the unpacked files of an earlier one.
class LoadBackup final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + kBackup);
        window.Expect(Success());
    }
    void Operate(WindowOperator& window) const override { window.LoadBackup(kDesk + kBackup); }
    [[nodiscard]] std::string Success() const override { return "Load backup file successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), "", finished, [](const std::string&) { return false; });
        CheckUnpacked(problems, Tracks(), finished);
        return problems;
    }
    [[nodiscard]] Problems CheckShown(WindowOperator& window) const override {
        Problems problems;
        CheckListed(problems, window, Tracks());
        return problems;
    }
};

/// "Connect Sensor": the downloaded backup replaces that of an earlier connection.
class ServerBackup final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override {
        FileTree files = OnDesk();
        files["./Ostra.osbak"] = BackupArchive(Tracks());
        return files;
    }
    void Prepare(WindowOperator& window) const override { FindServer(window); }
    void Operate(WindowOperator& window) const override {
        if (window.Text("pushButton_sensor") == "Disconnect Sensor") {
            window.Click("pushButton_sensor");
            window.ClearStatus();
        }
        ConnectSensor(window);
    }
    [[nodiscard]] std::string Success() const override { return "Connect successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), "", finished, [](const std::string&) { return false; });
        CheckFolder(problems, "./", {{"Ostra.osbak", BackupArchive(Tracks())}}, "Ostra.osbak", finished,
                    [](const std::string& archive) {
                        return Holds(archive, TracksInBackup,
                                     [](const FileTree& tracks) { return tracks == ServedTracks(); });
                    });
        CheckUnpacked(problems, ServedTracks(), finished);
        return problems;
    }
    [[nodiscard]] Problems CheckShown(WindowOperator& window) const override {
        Problems problems;
        CheckListed(problems, window, ServedTracks());
        return problems;
    }
};

/// "Sync to server" after an edit.
class Upload final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override {
        FileTree files = OnDesk();
        for (const auto& [name, content] : Tracks())
            files[kServed + kTrackPlace + name] = content;
        return files;
    }
    [[nodiscard]] std::unique_ptr<OstraServerProcess> Serve() const override {
        auto server = std::make_unique<OstraServerProcess>(kServed);
        setenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str(), 1);
        return server;
    }
    void Prepare(WindowOperator& window) const override {
        FindServer(window);
        ConnectSensor(window);
        window.Expect("Connect successfully.");
        EditTrack(window);
    }
    void Operate(WindowOperator& window) const override {
        window.Click("toolButton_upload");
        AwaitWorker(window);
    }
    [[nodiscard]] std::string Success() const override { return "Restoring successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), "", false, [](const std::string&) { return false; });
        CheckFolder(problems, "./", {{kDownloaded, ""}}, kDownloaded, true,
                    [](const std::string& archive) { return Holds(archive, TracksInBackup, IsEither); });
        CheckPacked(problems);
        // Nothing fails after the archive is sent: an operation that failed has not reached the server.
        const FileTree served = FilesIn(kServed + kTrackPlace);
        if (finished ? !IsEditedSet(served) : served != Tracks())
            problems.emplace_back("the server has the wrong workspace");
        return problems;
    }

  private:
    inline static const std::string kServed = "../../served/"; // outside the watched folder
    inline static const std::string kTrackPlace = "vdk/ContourPath/";
    inline static const std::string kDownloaded = "Ostra.osbak";
};

} // namespace

FileTree ServedTracks() {
    static const FileTree tracks = {{"served.trk", independent::BinaryFile(Original())},
                                    {"small.trk", "small"}};
    return tracks;
}

NamedScenarios BackupScenarios() {
    NamedScenarios scenarios;
    scenarios.emplace_back("save-backup", std::make_unique<SaveBackup>());
    scenarios.emplace_back("server-backup", std::make_unique<ServerBackup>());
    scenarios.emplace_back("load-backup", std::make_unique<LoadBackup>());
    return scenarios;
}

NamedScenarios UploadScenarios() {
    NamedScenarios scenarios;
    scenarios.emplace_back("upload", std::make_unique<Upload>());
    return scenarios;
}
