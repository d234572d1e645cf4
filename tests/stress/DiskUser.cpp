#include "DiskUser.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr int kMaxLength = 5000; ///< of a segment

} // namespace

const independent::Track& DiskUser::Map() {
    static const independent::Track map = SmallTrack();
    return map;
}

void DiskUser::makeFiles() {
    fs::create_directories("station/vdk/ContourPath");
    for (const char* name : {"one.trk", "two.trk", "N\xc3\xa4ht %s.trk"})
        WriteFile(std::string("station/vdk/ContourPath/") + name, randomTrackFile());
    stress.makeBackup(stress.folder.Path("a.osbak"),
                      {{"A.trk", randomTrackFile()}, {"b.trk", randomTrackFile()}, {"cut.trk", "Info\n"}});
    stress.makeBackup(stress.folder.Path("empty.osbak"), {});
    WriteFile("broken.osbak", "no archive");
    WriteFile("A.trk", randomTrackFile());
    WriteFile("external.trk", randomTrackFile());
    const std::string complete = independent::BinaryFile(randomTrack());
    WriteFile("cut.trk", complete.substr(0, complete.size() - 7));
    WriteFile("empty.trk", "");
    namesForDialogs = {"A.trk", "external.trk", "cut.trk", "empty.trk", "missing.trk", ""};
    for (const char* name : {"A.trk", "external.trk", "cut.trk", "empty.trk", "broken.osbak"})
        owned[name] = FileContent(name);
}

independent::Track DiskUser::randomTrack() {
    std::vector<independent::Segment> segments;
    const int paths = random.pick(4);
    for (int path = 0; path < paths; ++path) {
        const auto points = PathAcross(path, 2 + random.pick(5), 0.2 + 0.2 * path, random.pick(kMaxLength));
        segments.insert(segments.end(), points.begin(), points.end());
    }
    return SmallTrack(segments);
}

std::string DiskUser::randomTrackFile() {
    const independent::Track track = randomTrack();
    return random.chance(2) ? independent::BinaryFile(track) : independent::TextFile(track);
}

void DiskUser::changeBehindItsBack() {
    if (!fs::is_directory(kTracks) || !stress.window->isEnabled())
        return;
    const std::string path =
        kTracks + random.oneOf<std::string>({"A.trk", "b.trk", "one.trk", "two.trk", "external.trk"});
    const int what = random.pick(6);
    stress.note(std::to_string(what) + " " + path);
    if (what == 0)
        fs::remove(path);
    else if (what == 1)
        WriteFile(path, randomTrackFile().substr(0, static_cast<std::size_t>(random.pick(3000))));
    else
        WriteFile(path, randomTrackFile());
}

void DiskUser::checkFilesAlone() {
    for (const auto& [name, content] : owned)
        EXPECT_TRUE(FileContent(name) == content) << name << " has changed";
    EXPECT_FALSE(fs::exists("missing.trk"));
    EXPECT_FALSE(fs::exists("temp.trk"));
    for (const std::string& directory : {std::string("."), kTracks}) {
        if (!fs::is_directory(directory))
            continue;
        for (const auto& entry : fs::directory_iterator(directory))
            EXPECT_NE(entry.path().filename().string().rfind(".corvane-", 0), 0U) << entry.path();
    }
}
