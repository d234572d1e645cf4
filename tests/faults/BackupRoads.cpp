#include "Road.h"

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

/// "Save to Backup File" after an edit.
class SaveBackup final : public Road {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(); }
    void LeadUp(WindowOperator& window) const override {
        window.LoadBackup(kDesk + kBackup);
        window.LoadTrack("a.trk");
        window.Edit();
        window.Choose("comboBox_operation", "Save");
        window.Expect("Save successfully.");
    }
    void Operate(WindowOperator& window) const override { window.Click("toolButton_upload"); }
    [[nodiscard]] std::string Success() const override { return "Saved the backup file successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), kBackup, finished,
                    [](const std::string& archive) { return Holds(archive, TracksInBackup, IsEditedSet); });
        // The workspace archive on the way, and the edited workspace itself.
        const std::string inner = FileContent("./TmpDirBackup/workspaces/Workspace.osws");
        const auto isEither = [](const FileTree& tracks) {
            return tracks == Tracks() || IsEditedSet(tracks);
        };
        if (!Holds(inner, TracksInWorkspace, isEither))
            problems.emplace_back("Workspace.osws is broken");
        FileTree workspace = FilesIn(kTracks);
        if (!IsEditedSet(workspace))
            problems.emplace_back("the edited workspace has changed");
        return problems;
    }
};

/// "Load Backup" over what an earlier one has unpacked.
class LoadBackup final : public Road {
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
class ServerBackup final : public Road {
  public:
    [[nodiscard]] FileTree Before() const override {
        FileTree files = OnDesk();
        files["./Ostra.osbak"] = BackupArchive(Tracks());
        return files;
    }
    void LeadUp(WindowOperator& window) const override {
        if (window.Text("pushButton_sensor") != "Connect Sensor")
            throw std::runtime_error("no server was found");
    }
    void Operate(WindowOperator& window) const override {
        if (window.Text("pushButton_sensor") == "Disconnect Sensor") {
            window.Click("pushButton_sensor");
            window.ClearStatus();
        }
        window.Click("pushButton_sensor");
        const auto ended = [&window] {
            return window.Status() != "Connecting to the sensor ..." || window.HasErrors();
        };
        if (!window.Await(ended))
            throw std::runtime_error("the backup does not end");
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

} // namespace

FileTree ServedTracks() {
    static const FileTree tracks = {{"served.trk", independent::BinaryFile(Original())},
                                    {"small.trk", "small"}};
    return tracks;
}

std::vector<std::pair<std::string, std::unique_ptr<Road>>> BackupRoads() {
    std::vector<std::pair<std::string, std::unique_ptr<Road>>> roads;
    roads.emplace_back("save-backup", std::make_unique<SaveBackup>());
    roads.emplace_back("server-backup", std::make_unique<ServerBackup>());
    roads.emplace_back("load-backup", std::make_unique<LoadBackup>());
    return roads;
}
