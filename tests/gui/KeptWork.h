#pragma once

#include "FolderTree.h"
#include "SourceWorkflows.h"

#include <filesystem>
#include <string>
#include <vector>

/// Length of "2026-11-22 14.03.12 ", the start of every kept copy's name.
inline constexpr std::size_t kTimeLength = 20;

/// The real window and the copies that it keeps of work that would be lost.
class KeptWork : public SourceWorkflows {
  protected:
    KeptWork() {
        makeBackup(folder.Path("A.osbak"), {{"x.trk", trackOfLength(100)}, {"y.trk", trackOfLength(100)}});
        makeBackup(folder.Path("B.osbak"), {{"x.trk", trackOfLength(700)}});
    }

    /// A track with one path; `length` is its first segment's, and each following one's is 1 more.
    static std::string trackOfLength(int length) {
        return independent::BinaryFile(SmallTrack(PathAcross(0, 3, 0.5, length)));
    }

    void openBackup(const std::string& name) {
        if (!window)
            openWindowAndListen();
        choose("comboBox_sensor", "Backup File");
        loadBackup(folder.Path(name));
    }
    void load(const std::string& name) {
        choose("comboBox_file", name);
        choose("comboBox_operation", "Load");
        ASSERT_EQ(status(), "Load successfully.");
    }
    /// Loads a track of an opened backup and sets the length of its first segment to 33.
    void edit(const std::string& name) {
        load(name);
        type("lineEdit_lineLength", "33");
        ASSERT_EQ(text("label_state"), "Unsaved");
    }

    /// The kept copies without their times.
    std::vector<std::string> kept() {
        std::vector<std::string> names;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(Utf8Path(folder.Path("kept")), none))
            if (const std::string name = Utf8Text(entry.path().filename()); name.at(0) != '.')
                names.push_back(name.substr(kTimeLength));
        return names;
    }
    /// The path of a kept copy, by its name without the time.
    std::string keptPath(const std::string& name) {
        for (const auto& entry : std::filesystem::directory_iterator(Utf8Path(folder.Path("kept"))))
            if (Utf8Text(entry.path().filename()).substr(kTimeLength) == name)
                return Utf8Text(entry.path());
        throw std::runtime_error("not kept: " + name);
    }
    /// The edit journals in the folder of kept copies.
    std::vector<std::string> journals() {
        std::vector<std::string> found;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(Utf8Path(folder.Path("kept")), none))
            if (const std::string name = Utf8Text(entry.path().filename());
                name.starts_with(".journal-") && !name.ends_with(".lock"))
                found.push_back(folder.Path("kept/" + name));
        return found;
    }
    int keptLength(const std::string& name) { return firstLength(keptPath(name)); }
    std::string state() { return text("label_state"); }
};
