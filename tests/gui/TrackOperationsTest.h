#pragma once

#include "WindowTest.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

inline const std::string kNoTrack = "Please load a track file firstly.";

/// The segments that an independent reader finds in a track saved by the window, without the ruler.
inline std::vector<independent::Segment> SegmentsIn(const std::string& path) {
    return independent::ReadBinary(FileContent(path)).segments;
}

inline std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

/// The window without a server, and the operations on its tracks.
class TrackOperationsTest : public WindowTest {
  protected:
    void SetUp() override { openWindow(); }

    /// Opens a workspace with a binary track b.trk and a text track A.trk.
    void openWorkspace() {
        makeBackup(folder.Path("station.osbak"), {{"b.trk", independent::BinaryFile(track)},
                                                  {"A.trk", independent::TextFile(track)},
                                                  {"notes.txt", "no track"}});
        loadBackup(folder.Path("station.osbak"));
        ASSERT_EQ(status(), "Load backup file successfully.");
    }

    void loadFromWorkspace(const std::string& name) {
        choose("comboBox_file", name);
        operate("Load");
        ASSERT_EQ(status(), "Load successfully.");
    }

    /// Loads an external track of this name and content.
    void loadContent(const std::string& name, const std::string& content) {
        WriteFile(folder.Path(name), content);
        loadExternal(folder.Path(name));
    }

    /// Loads an external text track "one.trk".
    void loadOne() { loadContent("one.trk", independent::TextFile(track)); }

    void saveAs(const std::string& path) {
        answers.typeFileName(QString::fromStdString(path));
        operate("Save As");
    }

    /// Sets the first segment's length to a new value.
    void edit() { type("lineEdit_lineLength", "33"); }

    void expectEdited(const std::string& path) {
        const std::vector<independent::Segment> segments = SegmentsIn(path);
        ASSERT_EQ(segments.size(), track.segments.size());
        EXPECT_EQ(segments[0].length, 33);
        EXPECT_EQ(segments[1].length, track.segments[1].length);
    }

    void expectNormal() {
        EXPECT_EQ(find<QComboBox>("comboBox_operation").currentText(), QStringLiteral("Normal"));
    }

    const independent::Track track = SmallTrack(PathAcross(0, 3, 0.5, 100));
};
