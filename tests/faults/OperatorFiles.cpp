#include "OperatorFiles.h"

#include "SmallTrack.h"
#include "TarBlocks.h"
#include "TarContent.h"
#include "TemporaryFolder.h"

#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

constexpr int kEditedLength = 33;
const std::string kTrackPlace = "vdk/ContourPath/";
const std::string kWorkspacePlace = "workspaces/Workspace.osws";

} // namespace

independent::Track OperatorTrack(int width, int height) {
    return SmallTrack(PathAcross(0, 3, 0.5, 100), width, height);
}

bool IsEdited(const std::string& file, const independent::Track& original) {
    independent::Track expected = original;
    expected.segments[0].length = kEditedLength;
    independent::Track found;
    try {
        found = independent::ReadBinary(file);
    } catch (const std::exception&) {
        return false;
    }
    expected.rulers = found.rulers; // the reader has checked that they are complete
    expected.heights.clear();
    expected.columnPositions.clear();
    expected.rowPositions.clear();
    found.heights.clear();
    found.columnPositions.clear();
    found.rowPositions.clear();
    return !found.rulers.empty() && found == expected;
}

std::string WorkspaceArchive(const FileTree& tracks) {
    std::string archive = TarFolder("vdk") + TarFolder("vdk/ContourPath");
    for (const auto& [name, content] : tracks)
        archive += TarFile(kTrackPlace + name, content);
    return archive + TarEnd();
}

std::string BackupArchive(const FileTree& tracks) {
    return TarFile("info.json", "{}") + TarFolder("workspaces") +
           TarFile(kWorkspacePlace, WorkspaceArchive(tracks)) + TarEnd();
}

FileTree TracksInWorkspace(const std::string& archive) {
    FileTree tracks;
    for (const auto& [name, content] : TarContent(archive)) {
        if (name.rfind(kTrackPlace, 0) != 0)
            throw std::runtime_error("unexpected entry: " + name);
        tracks[name.substr(kTrackPlace.size())] = content;
    }
    return tracks;
}

FileTree TracksInBackup(const std::string& backup) {
    FileTree outer = TarContent(backup);
    if (outer.count("info.json") != 1 || outer.count(kWorkspacePlace) != 1 || outer.size() != 2)
        throw std::runtime_error("other entries than the backup's two");
    return TracksInWorkspace(outer[kWorkspacePlace]);
}

FileTree InFolder(const std::string& folder, const FileTree& files) {
    FileTree placed;
    for (const auto& [name, content] : files)
        placed[folder + name] = content;
    return placed;
}

void WriteTree(const FileTree& files) {
    for (const auto& [name, content] : files) {
        fs::create_directories(fs::path(name).parent_path());
        WriteFile(name, content);
    }
}

FileTree FilesIn(const std::string& folder) {
    FileTree files;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing))
        if (entry.is_regular_file())
            files[entry.path().filename().string()] = FileContent(entry.path().string());
    return files;
}

bool LooksLikeContent(const std::string& name) {
    return name.front() != '.' && (name.ends_with(".trk") || name.ends_with(".osbak"));
}
