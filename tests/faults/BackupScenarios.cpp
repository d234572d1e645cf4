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

/// What the backup on the desk holds.
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

/// Whether an archive can be read and its tracks pass.
template<typename Read, typename Passes>
bool Holds(const std::string& archive, Read read, Passes passes) {
    try {
        return passes(read(archive));
    } catch (const std::exception&) {
        return false;
    }
}

/// Every track in the unpacked workspace is one of these, whole; all are there when it is finished.
void CheckUnpacked(Problems& problems, const FileTree& tracks, bool finished) {
    for (const auto& [name, content] : FilesIn(kTracks))
        if (LooksLikeContent(name) && (tracks.count(name) == 0 || tracks.at(name) != content))
            problems.push_back(kTracks + name + " is not whole");
    if (finished && FilesIn(kTracks) != tracks)
        problems.push_back(kTracks + " is not what the backup holds");
}

FileTree OnDesk() {
    FileTree files;
    for (const auto& [name, content] : Desk())
        files[kDesk + name] = content;
    return files;
}

bool IsEither(const FileTree& tracks) {
    return tracks == Tracks() || IsEditedSet(tracks);
}

/// The workspace archive on the way, and the edited workspace itself.
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

/// Whoever answers on a busy machine may come too late for the first question.
void FindServer(WindowOperator& window) {
    constexpr int kQuestions = 10;
    for (int asked = 1; window.Text("pushButton_sensor") != "Connect Sensor"; ++asked) {
        if (asked == kQuestions)
            throw std::runtime_error("no server was found");
        window.Click("toolButton_reset");
    }
}

/// While the worker works, the window takes nothing.
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
    void LeadUp(WindowOperator& window) const override {
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

/// "Load Backup" over what an earlier one has unpacked.
class LoadBackup final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(); }
    void LeadUp(WindowOperator& window) const override {
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

/// "Connect Sensor": a server's backup in place of the one that an earlier day has left.
class ServerBackup final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override {
        FileTree files = OnDesk();
        files["./Ostra.osbak"] = BackupArchive(Tracks());
        return files;
    }
    void LeadUp(WindowOperator& window) const override { FindServer(window); }
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
    void LeadUp(WindowOperator& window) const override {
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
        // Nothing fails once the archive is on its way: what did not succeed has not reached the server.
        const FileTree served = FilesIn(kServed + kTrackPlace);
        if (finished ? !IsEditedSet(served) : served != Tracks())
            problems.emplace_back("the server holds another workspace than it should");
        return problems;
    }

  private:
    inline static const std::string kServed = "../../served/"; // not of the files that count
    inline static const std::string kTrackPlace = "vdk/ContourPath/";
    inline static const std::string kDownloaded = "Ostra.osbak";
};

} // namespace

FileTree ServedTracks() {
    static const FileTree tracks = {{"served.trk", independent::BinaryFile(Original())},
                                    {"small.trk", "small"}};
    return tracks;
}

std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> BackupScenarios() {
    std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> scenarios;
    scenarios.emplace_back("save-backup", std::make_unique<SaveBackup>());
    scenarios.emplace_back("server-backup", std::make_unique<ServerBackup>());
    scenarios.emplace_back("load-backup", std::make_unique<LoadBackup>());
    return scenarios;
}

std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> UploadScenarios() {
    std::vector<std::pair<std::string, std::unique_ptr<Scenario>>> scenarios;
    scenarios.emplace_back("upload", std::make_unique<Upload>());
    return scenarios;
}
