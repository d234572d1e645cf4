#include "Scenario.h"

namespace {

const independent::Track& Original() {
    static const independent::Track track = OperatorTrack(120, 80);
    return track;
}

const std::string& Binary() {
    static const std::string file = independent::BinaryFile(Original());
    return file;
}

FileTree Tracks() {
    return {{"a.trk", Binary()}, {"text.trk", independent::TextFile(Original())}};
}

FileTree Desk(const FileTree& tracks) {
    return {{"station.osbak", BackupArchive(tracks)}, {"mine.trk", "mine"}};
}

FileTree OnDesk(const FileTree& tracks) {
    return InFolder(kDesk, Desk(tracks));
}

bool Never(const std::string& /*content*/) {
    return false;
}

void OpenAndEdit(WindowOperator& window) {
    window.LoadBackup(kDesk + "station.osbak");
    window.Expect("Load backup file successfully.");
    window.LoadTrack("a.trk");
    window.Edit();
}

/// An operation that leaves an open track with unsaved paths and changes no file.
class OverUnsaved : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(Tracks()); }
    void Prepare(WindowOperator& window) const override { OpenAndEdit(window); }
    [[nodiscard]] Problems Check(bool /*finished*/) const override {
        Problems problems;
        CheckFolder(problems, kTracks, Tracks(), "", false, Never);
        CheckFolder(problems, kDesk, Desk(Tracks()), "", false, Never);
        return problems;
    }
};

/// "Load" of another track.
class LoadOverUnsaved final : public OverUnsaved {
  public:
    void Prepare(WindowOperator& window) const override {
        OverUnsaved::Prepare(window);
        window.Choose("comboBox_file", "text.trk");
    }
    void Operate(WindowOperator& window) const override { window.Choose("comboBox_operation", "Load"); }
    [[nodiscard]] std::string Success() const override { return "Load successfully."; }
};

/// "Reset", which closes everything.
class ResetOverUnsaved final : public OverUnsaved {
  public:
    void Operate(WindowOperator& window) const override { window.Click("toolButton_reset"); }
    [[nodiscard]] std::string Success() const override { return "Reset successfully."; }
};

/// "Delete" of several tracks in turn.
class DeleteTrack final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(Deletable()); }
    void Prepare(WindowOperator& window) const override {
        window.LoadBackup(kDesk + "station.osbak");
        window.Expect("Load backup file successfully.");
    }
    void Operate(WindowOperator& window) const override { window.Choose("comboBox_operation", "Delete"); }
    [[nodiscard]] std::string Success() const override { return "Delete successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        const FileTree now = FilesIn(kTracks);
        for (const auto& [name, content] : now)
            if (LooksLikeContent(name) && content != Binary())
                problems.push_back(kTracks + name + " has changed");
        if (finished && now.size() == Deletable().size())
            problems.emplace_back("nothing was deleted");
        CheckFolder(problems, kDesk, Desk(Deletable()), "", false, Never);
        return problems;
    }

  private:
    static FileTree Deletable() { return {{"1.trk", Binary()}, {"2.trk", Binary()}, {"3.trk", Binary()}}; }
};

/// "Load Backup" over a workspace with a track that was saved but not sent, and then edited again.
class LoadBackupOverWork final : public Scenario {
  public:
    [[nodiscard]] FileTree Before() const override { return OnDesk(Tracks()); }
    void Prepare(WindowOperator& window) const override {
        OpenAndEdit(window);
        window.Choose("comboBox_operation", "Save");
        window.Expect("Save successfully.");
        window.Type("lineEdit_lineLength", "44");
    }
    void Operate(WindowOperator& window) const override { window.LoadBackup(kDesk + "station.osbak"); }
    [[nodiscard]] std::string Success() const override { return "Load backup file successfully."; }
    [[nodiscard]] Problems Check(bool finished) const override {
        Problems problems;
        CheckFolder(problems, kDesk, Desk(Tracks()), "", finished, Never);
        if (finished && FilesIn(kTracks) != Tracks())
            problems.push_back(kTracks + " differs from the backup");
        return problems;
    }
};

/// Whether an independent reader can read a complete track or backup.
template<typename Read>
bool IsComplete(const std::string& content, Read read) {
    try {
        static_cast<void>(read(content));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

Problems Scenario::CheckKept() {
    Problems problems;
    for (const auto& [name, content] : FilesIn("../kept"))
        if (LooksLikeContent(name) && !IsComplete(content, independent::ReadBinary) &&
            !IsComplete(content, independent::ReadText) && !IsComplete(content, TracksInBackup))
            problems.push_back("the kept copy " + name + " is not complete");
    return problems;
}

NamedScenarios KeepingScenarios() {
    NamedScenarios scenarios;
    scenarios.emplace_back("load-over-unsaved", std::make_unique<LoadOverUnsaved>());
    scenarios.emplace_back("reset-over-unsaved", std::make_unique<ResetOverUnsaved>());
    scenarios.emplace_back("delete-track", std::make_unique<DeleteTrack>());
    scenarios.emplace_back("load-backup-over-work", std::make_unique<LoadBackupOverWork>());
    return scenarios;
}
