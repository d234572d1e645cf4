#include "tools/track/LoadedTrack.h"

#include "basalt/InputFile.h"
#include "document/formats/ConvertBIN.h"
#include "document/formats/ConvertCSV.h"
#include "document/formats/CsvScan.h"
#include "document/formats/Heights.h"
#include "tools/commandline/Failure.h"
#include "tools/track/CapturedLog.h"

#include <cmath>
#include <limits>

namespace {

/// Calls a converter. @throws Failure with the converter's own reason when it does not return 0
template<typename Work>
void Require(const std::string& file, const char* what, Work&& work) {
    const CapturedLog log;
    if (work() == 0)
        return;
    const std::string reason = log.FirstError();
    throw Failure(ExitCode::Unreadable, file + ": " + (reason.empty() ? what : reason));
}

void LoadText(LoadedTrack& track, PathSection section) {
    ConvertCSV converter;
    Require(track.file, "no information", [&] { return converter.ReadInfo(track.file, track.info); });
    track.hasPaths = ConvertCSV::HasPathSection(track.file);
    if (!track.hasPaths && section == PathSection::Optional)
        return;
    Require(track.file, "no section with paths", [&] { return converter.ReadPath(track.file, track.paths); });
}

void LoadBinary(LoadedTrack& track) {
    ConvertBIN converter;
    // The anchor first, since reading it rejects a file of another version.
    Require(track.file, "no anchor", [&] { return converter.ReadAnchor(track.file, track.info); });
    Require(track.file, "no information", [&] { return converter.ReadInfo(track.file, track.info); });
    Require(track.file, "no paths", [&] { return converter.ReadPath(track.file, track.paths); });
}

HeightMap LoadRawHeights(const LoadedTrack& track) {
    HeightMap heights;
    std::int64_t size = 0;
    Require(track.file, "no height map", [&] {
        return track.encoding == TrackEncoding::Binary
                   ? ConvertBIN().ReadRawHeights(track.file, track.info, heights)
                   : ConvertCSV().ReadHeightMap(track.file, track.info, heights, size);
    });
    return heights;
}

/// Replaces the rounded heights by those written in the text track. @pre the raw values have been read, so
/// the file has been checked for surplus rows and for its size
void ReadHeightsAsWritten(const LoadedTrack& track, std::vector<double>& heights) {
    CsvScan scan(track.file);
    auto row = heights.begin();
    for (bool more = scan.Find("YX"); more && scan.NextInSection() && row != heights.end();
         row += track.info.width) {
        CsvFields fields(scan.Line());
        fields.Next();
        auto cell = row;
        for (double height = 0.0; cell != row + track.info.width && fields.HasNext(); ++cell)
            if (fields.NextNumber(height) && std::isfinite(height))
                *cell = height;
    }
}

} // namespace

void RequireFile(const std::string& file) {
    const InputFile input(file.c_str());
    if (!input.IsOpen())
        throw Failure(ExitCode::Unreadable, file + ": " + input.Failure().message());
}

LoadedTrack LoadTrack(const std::string& file, PathSection section) {
    RequireFile(file);
    LoadedTrack track;
    track.file = file;
    track.encoding = EncodingOf(file).value_or(TrackEncoding::Text);
    track.info.minHeight = kInitialMinHeight;
    track.info.maxHeight = kInitialMaxHeight;
    if (track.encoding == TrackEncoding::Binary)
        LoadBinary(track);
    else
        LoadText(track, section);
    return track;
}

std::vector<double> LoadStoredHeights(const LoadedTrack& track) {
    const HeightMap raw = LoadRawHeights(track);
    const SampleScale scale{track.info.zResolution, track.info.zOffset};
    std::vector<double> heights(raw.size(), std::numeric_limits<double>::quiet_NaN());
    for (std::size_t cell = 0; cell < raw.size(); ++cell)
        if (raw[cell] != kNoMeasurement)
            heights[cell] = scale.HeightOf(raw[cell]);
    return heights;
}

std::vector<double> LoadHeights(const LoadedTrack& track) {
    std::vector<double> heights = LoadStoredHeights(track);
    if (track.encoding == TrackEncoding::Text)
        ReadHeightsAsWritten(track, heights);
    return heights;
}

QImage LoadImage(const LoadedTrack& track) {
    QImage image;
    const double lowest = track.info.minHeight;
    const double highest = track.info.maxHeight;
    Require(track.file, "no height map", [&] {
        return track.encoding == TrackEncoding::Binary
                   ? ConvertBIN().ReadImage(track.file, track.info, lowest, highest, image)
                   : ConvertCSV().ReadImage(track.file, track.info, lowest, highest, image);
    });
    if (image.isNull())
        throw Failure(ExitCode::Unreadable, track.file + ": the height map has no cells");
    return image;
}
