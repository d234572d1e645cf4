#include "Scenario.h"

#include "canvas/qmaskwidget.h"

#include <QComboBox>

namespace {

// More than one buffer of the writer, and not a multiple of it.
constexpr int kWidth = 240;
constexpr int kHeight = 160;

const independent::Track& Original() {
    static const independent::Track track = OperatorTrack(kWidth, kHeight);
    return track;
}

const std::string& Binary() {
    static const std::string file = independent::BinaryFile(Original());
    return file;
}

const std::string& Text() {
    static const std::string file = independent::TextFile(Original());
    return file;
}

bool IsNew(const std::string& file) {
    return IsEdited(file, Original());
}

/// The tracks of the open workspace.
FileTree Workspace() {
    return {{"binary.trk", Binary()}, {"text.trk", Text()}, {"other.trk", "another's"}};
}

/// "Save" of a track of the workspace, through a temporary track.
class SaveInPlace final : public Scenario {
  public:
    explicit SaveInPlace(std::string track) : track(std::move(track)) {}

    [[nodiscard]] FileTree Before() const override { return InFolder(kDesk, Desk()); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + "station.osbak");
        window.Expect("Load backup file successfully.");
        window.LoadTrack(track);
        window.Edit();
    }
    void Operate(WindowOperator& window) const override { window.Choose("comboBox_operation", "Save"); }
    [[nodiscard]] std::string Success() const override { return "Save successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kTracks, Workspace(), track, finished, IsNew);
        CheckFolder(problems, kDesk, Desk(), "", finished, IsNew);
        return problems;
    }

  private:
    static FileTree Desk() { return {{"station.osbak", BackupArchive(Workspace())}, {"mine.trk", "mine"}}; }

    std::string track;
};

/// "Save As", from one file of the desk to another.
class SaveAs final : public Scenario {
  public:
    SaveAs(std::string original, std::string target)
        : original(std::move(original)), target(std::move(target)) {}

    [[nodiscard]] FileTree Before() const override { return InFolder(kDesk, Desk()); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + "station.osbak"); // operations are enabled once a source is open
        window.LoadExternal(kDesk + original);
        window.Edit();
    }
    void Operate(WindowOperator& window) const override {
        window.NameFile(kDesk + target);
        window.Choose("comboBox_operation", "Save As");
    }
    [[nodiscard]] std::string Success() const override { return "Save As successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(), target, finished, IsNew);
        CheckFolder(problems, kTracks, Workspace(), "", finished, IsNew);
        return problems;
    }

  private:
    static FileTree Desk() {
        return {{"station.osbak", BackupArchive(Workspace())},
                {"binary.trk", Binary()},
                {"text.trk", Text()},
                {"old.trk", Binary()}};
    }

    std::string original;
    std::string target;
};

/// "Save" of an external track, which is copied into the workspace.
class SaveExternal final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return InFolder(kDesk, Desk()); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + "station.osbak");
        window.LoadExternal(kDesk + "new.trk");
        window.Edit();
    }
    void Operate(WindowOperator& window) const override { window.Choose("comboBox_operation", "Save"); }
    [[nodiscard]] std::string Success() const override { return "Save successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kTracks, Workspace(), "new.trk", finished, IsNew);
        CheckFolder(problems, kDesk, Desk(), "", finished, IsNew);
        return problems;
    }
    [[nodiscard]] Problems CheckShown(WindowOperator& window) const override {
        Problems problems;
        FileTree tracks = Workspace();
        tracks["new.trk"] = "";
        CheckListed(problems, window, tracks);
        return problems;
    }

  private:
    static FileTree Desk() { return {{"station.osbak", BackupArchive(Workspace())}, {"new.trk", Text()}}; }
};

/// "Load" of a track of the workspace, while another one is open.
class LoadTrack final : public Scenario {
  public:
    explicit LoadTrack(std::string track) : track(std::move(track)) {}

    [[nodiscard]] FileTree Before() const override { return InFolder(kDesk, Desk()); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + "station.osbak");
        window.LoadExternal(kDesk + "small.trk");
        window.Choose("comboBox_file", track);
    }
    void Operate(WindowOperator& window) const override { window.Choose("comboBox_operation", "Load"); }
    [[nodiscard]] std::string Success() const override { return "Load successfully."; }
    [[nodiscard]] Problems Check(bool /*finished*/) const override {
        Problems problems;
        CheckFolder(problems, kTracks, Workspace(), "", false, IsNew);
        CheckFolder(problems, kDesk, Desk(), "", false, IsNew);
        return problems;
    }
    [[nodiscard]] Problems CheckShown(WindowOperator& window) const override {
        const auto& canvas = window.Find<QMaskWidget>("label_mask");
        const auto& paths = canvas.paths();
        Problems problems;
        if (paths.size() != 1 || paths[0].points.size() != 3)
            problems.emplace_back("wrong paths on the canvas");
        if (window.Text("label_fileName") != track)
            problems.emplace_back("wrong name shown");
        return problems;
    }

  private:
    static FileTree Desk() {
        return {{"station.osbak", BackupArchive(Workspace())},
                {"small.trk", independent::BinaryFile(OperatorTrack(40, 20))}};
    }

    std::string track;
};

} // namespace

void Scenario::CheckListed(Problems& problems, WindowOperator& window, const FileTree& tracks) {
    const auto& combo = window.Find<QComboBox>("comboBox_file");
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(combo.count()));
    for (int i = 0; i < combo.count(); ++i)
        names.push_back(combo.itemText(i).toStdString());
    std::vector<std::string> expected;
    for (const auto& [name, content] : tracks)
        expected.push_back(name);
    expected.emplace_back("External");
    if (names != expected)
        problems.emplace_back("wrong list of tracks");
}

void Scenario::CheckOthers(Problems& problems, const std::string& folder, const FileTree& before,
                           const FileTree& now) {
    for (const auto& [name, content] : before) {
        const auto found = now.find(name);
        if (found == now.end() || found->second != content)
            problems.push_back(folder + name + " has changed");
    }
    for (const auto& [name, content] : now)
        if (before.count(name) == 0 && LooksLikeContent(name))
            problems.push_back(folder + name + " looks like content");
}

NamedScenarios TrackScenarios() {
    NamedScenarios scenarios;
    scenarios.emplace_back("save-text", std::make_unique<SaveInPlace>("text.trk"));
    scenarios.emplace_back("save-binary", std::make_unique<SaveInPlace>("binary.trk"));
    scenarios.emplace_back("save-as-new", std::make_unique<SaveAs>("text.trk", "fresh.trk"));
    scenarios.emplace_back("save-as-existing", std::make_unique<SaveAs>("binary.trk", "old.trk"));
    scenarios.emplace_back("save-external", std::make_unique<SaveExternal>());
    return scenarios;
}

NamedScenarios LoadScenarios() {
    NamedScenarios scenarios;
    scenarios.emplace_back("load-text", std::make_unique<LoadTrack>("text.trk"));
    scenarios.emplace_back("load-binary", std::make_unique<LoadTrack>("binary.trk"));
    return scenarios;
}
