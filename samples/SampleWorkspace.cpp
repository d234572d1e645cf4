#include "samples/SampleWorkspace.h"

#include "samples/TrackFileWriter.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace {

void WriteText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file.good())
        throw std::runtime_error("cannot write " + path.filename().string());
}

} // namespace

void WriteSampleWorkspace(const std::string& folder, std::uint32_t seed) {
    const std::filesystem::path root = PathOf(folder) / "vdk";
    const std::filesystem::path tracks = root / "ContourPath";
    std::filesystem::create_directories(tracks);
    std::filesystem::create_directories(root / "empty");
    WriteText(root / "settings.json", "{\"version\": 1}\n");
    WriteText(tracks / "notes.txt", "groove: housing, seam: cover\n");

    const MachinedPart housing(MachinedPart::Kind::Groove, 300, 200, seed);
    const MachinedPart cover(MachinedPart::Kind::Seam, 400, 300, seed + 1);
    const std::string inTracks = folder + "/vdk/ContourPath/";
    WriteTrackFile(inTracks + "housing.trk", housing, {TrackFormat::Text, true});
    WriteTrackFile(inTracks + "housing-blank.trk", housing, {TrackFormat::Text, false});
    WriteTrackFile(inTracks + "cover.trk", cover, {TrackFormat::Binary, true});
}
