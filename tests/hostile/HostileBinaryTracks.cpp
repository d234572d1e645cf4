#include "HostileTrack.h"

#include "IndependentTrack.h"

#include <cstring>
#include <limits>

namespace {

using independent::Track;

const std::string kNotFound = "Could not find file (";
const std::string kInfoFailed = "[ReadInfoFromBin] (EXCEPTION) ";
const std::string kImageFailed = "[ReadImageFromBin] (EXCEPTION) ";
const std::string kPathFailed = "[ReadPathFromBin] (EXCEPTION) ";
const std::string kNoRange = "Invalid depth range for pixel retrieval from CSV";
const std::string kNoTextMap = "No height map data";

// Offsets of the fields in the file.
constexpr std::size_t kVersion = 8;
constexpr std::size_t kZResolution = 28;
constexpr std::size_t kZOffset = 52;
constexpr std::size_t kWidth = 60;
constexpr std::size_t kHeight = 64;
constexpr std::size_t kHeaderSize = 68;
constexpr std::size_t kCells = 12;
constexpr std::size_t kBlocks = kHeaderSize + kCells;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// 3 x 2 cells, an anchor, one ruler and a path of two points.
Track CompleteTrack() {
    Track track;
    track.zResolution = 0.5;
    track.zOffset = -5;
    track.width = 3;
    track.height = 2;
    track.cells = {1, independent::kNoMeasurement, 300, -300, 32767, 0};
    track.anchor = {1, 2, 3};
    track.rulers = {{0, 0, 0, 1, 2, 3, 4, 1, 50}};
    track.segments = {{0, 0, 1, 2, 0.25, 0.5, 1, 100, 50, 20}, {0, 1, 3, 4, 0.75, 0.5, 1, 100, 50, 20}};
    return track;
}

std::string CompleteFile() {
    return independent::BinaryFile(CompleteTrack());
}

/// The complete file with the bytes of a number at one place.
template<typename Number>
std::string With(std::size_t place, Number number) {
    std::string file = CompleteFile();
    std::memcpy(file.data() + place, &number, sizeof number);
    return file;
}

std::string WithSize(std::int32_t width, std::int32_t height) {
    std::string file = With(kWidth, width);
    std::memcpy(file.data() + kHeight, &height, sizeof height);
    return file;
}

std::string Number(std::int32_t number) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

HostileTrack Loads(const std::string& name, const std::string& content) {
    return {name, content, Outcome::Good(), Outcome::Good(), {-1, ""}, Outcome::Good()};
}

HostileTrack NoInfo(const std::string& name, const std::string& content, const std::string& line,
                    const std::string& pathLine) {
    return {name, content, Outcome::Fails(line), Outcome::Unasked(), {-1, ""}, Outcome::Fails(pathLine)};
}

HostileTrack NoImage(const std::string& name, const std::string& content, const std::string& line,
                     const Outcome& paths = Outcome::Good()) {
    return {name, content, Outcome::Good(), Outcome::Fails(line), {-1, ""}, paths};
}

HostileTrack NoPaths(const std::string& name, const std::string& content) {
    return {name, content, Outcome::Good(), Outcome::Good(), {-1, ""}, Outcome::Fails(kPathFailed)};
}

void AddCutHeaders(std::vector<HostileTrack>& tracks) {
    const std::string complete = CompleteFile();
    for (std::size_t size = 0; size < kHeaderSize; size += 4) {
        HostileTrack track = NoInfo("header-cut-at-byte-" + std::to_string(size), complete.substr(0, size),
                                    kInfoFailed, kPathFailed);
        if (size == 0) { // nothing is left to identify a binary file
            track.info = Outcome::Fails(kNoTextMap);
            track.map = Outcome::Unasked();
            track.paths = Outcome::FailsSilently();
        } else if (size < kVersion) {
            track.info = track.paths = Outcome::Fails(kNotFound);
        }
        tracks.push_back(track);
    }
}

void AddCutBlocks(std::vector<HostileTrack>& tracks) {
    const std::string complete = CompleteFile();
    const auto cut = [&](std::size_t size) { return complete.substr(0, size); };
    tracks.push_back(NoInfo("no-map", cut(kHeaderSize), kInfoFailed, kPathFailed));
    tracks.push_back(NoInfo("map-cut-in-the-first-row", cut(kHeaderSize + 3), kInfoFailed, kPathFailed));
    tracks.push_back(NoInfo("map-cut-between-rows", cut(kHeaderSize + 6), kInfoFailed, kPathFailed));
    tracks.push_back(NoInfo("map-one-byte-short", cut(kBlocks - 1), kInfoFailed, kPathFailed));
    tracks.push_back(Loads("no-blocks", cut(kBlocks)));
    tracks.push_back(NoInfo("first-tag-cut", cut(kBlocks + 3), kInfoFailed, kPathFailed));
    tracks.push_back(NoInfo("anchor-cut", cut(kBlocks + 4 + 23), kInfoFailed, kPathFailed));
    const std::size_t rulers = kBlocks + 28;
    tracks.push_back(Loads("anchor-alone", cut(rulers)));
    tracks.push_back(NoPaths("second-tag-cut", cut(rulers + 1)));
    tracks.push_back(NoPaths("ruler-count-missing", cut(rulers + 4)));
    tracks.push_back(NoPaths("ruler-count-cut", cut(rulers + 7)));
    tracks.push_back(NoPaths("ruler-cut", cut(rulers + 8 + 55)));
    const std::size_t segments = rulers + 8 + 56;
    tracks.push_back(Loads("no-segment-block", cut(segments)));
    tracks.push_back(NoPaths("third-tag-cut", cut(segments + 2)));
    tracks.push_back(NoPaths("segment-count-missing", cut(segments + 4)));
    tracks.push_back(NoPaths("segment-count-cut", cut(segments + 6)));
    tracks.push_back(NoPaths("first-segment-cut", cut(segments + 8 + 1)));
    tracks.push_back(NoPaths("last-segment-cut", cut(segments + 8 + std::size_t{2} * 56 - 1)));
}

void AddMagics(std::vector<HostileTrack>& tracks) {
    const auto magic = [](const std::string& bytes) { return bytes + CompleteFile().substr(bytes.size()); };
    tracks.push_back(Loads("magic-in-the-middle", magic("xxTracxx")));
    tracks.push_back(Loads("magic-without-its-zero", magic("Track   ")));
    // The word is in the first line, but not in the first eight bytes.
    tracks.push_back(NoInfo("magic-after-its-place", magic("xxxxxxTrac"), kNotFound, kNotFound));
    HostileTrack track = NoInfo("magic-in-lower-case", magic("track  "), kNoTextMap, "");
    track.map = Outcome::Unasked();
    tracks.push_back(track);
    track.name = "magic-after-a-line-feed";
    track.content = magic("\nTrack ");
    tracks.push_back(track);
    track.name = "magic-of-three-letters";
    track.content = magic(std::string("Tra\0\0\0\0\0", 8));
    tracks.push_back(track);
    for (const std::int32_t version : {0, 2, -1, 16777216, 2147483647})
        tracks.push_back(NoImage("version-" + std::to_string(version), With(kVersion, version),
                                 "Wrong file version (" + std::to_string(version) + ")",
                                 Outcome::Fails("Wrong file version (" + std::to_string(version) + ")")));
}

void AddSizes(std::vector<HostileTrack>& tracks) {
    struct Size {
        const char* name;
        std::int32_t width;
        std::int32_t height;
    };
    constexpr std::int32_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMinInt32 = std::numeric_limits<std::int32_t>::min();
    for (const Size& size :
         {Size{"negative-width", -1, 2}, Size{"negative-height", 3, -1}, Size{"both-negative", -3, -2},
          Size{"the-smallest-sizes", kMinInt32, kMinInt32}, Size{"the-largest-sizes", kMaxInt32, kMaxInt32},
          Size{"the-largest-width", kMaxInt32, 1}, Size{"the-largest-height", 1, kMaxInt32},
          Size{"product-of-32-bits-is-0", 65536, 65536}, Size{"product-of-32-bits-is-8", 715827884, 6},
          Size{"bytes-of-32-bits-are-0", 65536, 32768}, Size{"a-row-too-many", 3, 200},
          Size{"a-column-too-many", 200, 2}, Size{"gigabytes", 40000, 40000}})
        tracks.push_back(NoInfo(size.name, WithSize(size.width, size.height), kInfoFailed, kPathFailed));
    // Without cells there is no picture, and the cells of the file are where a block should be.
    const std::string noCells = CompleteFile().erase(kHeaderSize, kCells);
    const auto empty = [&](std::int32_t width, std::int32_t height) {
        std::string file = noCells;
        std::memcpy(file.data() + kWidth, &width, sizeof width);
        std::memcpy(file.data() + kHeight, &height, sizeof height);
        return file;
    };
    tracks.push_back(NoImage("no-columns", empty(0, 2), kNoRange));
    tracks.push_back(NoImage("no-rows", empty(3, 0), kNoRange));
    tracks.push_back(NoImage("no-cells", empty(0, 0), kNoRange));
    tracks.push_back(NoImage("no-columns-and-the-largest-height", empty(0, kMaxInt32), kNoRange));
}

void AddHeights(std::vector<HostileTrack>& tracks) {
    Track track = CompleteTrack();
    track.cells.assign(6, 7);
    tracks.push_back(NoImage("every-cell-equal", independent::BinaryFile(track), kNoRange));
    track.cells.assign(6, independent::kNoMeasurement);
    tracks.push_back(NoImage("every-cell-empty", independent::BinaryFile(track), kNoRange));
    tracks.push_back(NoImage("z-resolution-0", With(kZResolution, 0.0), kNoRange));
    tracks.push_back(NoImage("z-resolution-nan", With(kZResolution, kNoNumber), kNoRange));
    tracks.push_back(NoImage("z-resolution-infinite", With(kZResolution, kInfinity), kNoRange));
    tracks.push_back(NoImage("z-offset-nan", With(kZOffset, kNoNumber), kNoRange));
    tracks.push_back(NoImage("z-offset-infinite", With(kZOffset, -kInfinity), kNoRange));
    tracks.push_back(NoImage("z-offset-drowns-the-heights", With(kZOffset, 1e30), kNoRange));
    tracks.push_back(NoImage("z-resolution-tiny", With(kZResolution, 4.9e-324), kNoRange));
    tracks.push_back(Loads("z-resolution-negative", With(kZResolution, -1.0)));
    tracks.push_back(Loads("heights-partly-beyond-a-double", With(kZResolution, 1e305)));
    tracks.push_back(Loads("x-resolution-nan", With(12, kNoNumber)));
    tracks.push_back(Loads("x-offset-infinite", With(36, kInfinity)));
}

void AddRecords(std::vector<HostileTrack>& tracks) {
    const std::string head =
        independent::BinaryHead(CompleteTrack()) + independent::BinaryAnchor(CompleteTrack());
    const std::string rulers = independent::BinaryRulers(CompleteTrack());
    const std::string segments = independent::BinarySegments(CompleteTrack());
    const std::string records = segments.substr(8);
    const auto segmentCount = [&](std::int32_t count) {
        return head + rulers + Number(83) + Number(count) + records;
    };
    const auto rulerCount = [&](std::int32_t count) {
        return head + Number(82) + Number(count) + rulers.substr(8) + segments;
    };
    for (const std::int32_t count : {3, 1000, 2147483647, -1, -2147483647 - 1})
        tracks.push_back(NoPaths("segment-count-" + std::to_string(count), segmentCount(count)));
    for (const std::int32_t count : {1000, 2147483647, -1, -2147483647 - 1, 38347923})
        tracks.push_back(NoPaths("ruler-count-" + std::to_string(count), rulerCount(count)));
    tracks.push_back(Loads("fewer-segments-counted", segmentCount(1)));
    // The records are followed by an unknown tag: there are no paths.
    tracks.push_back(Loads("ruler-count-0-before-a-ruler", rulerCount(0)));
    tracks.push_back(Loads("segments-before-rulers", head + segments + rulers));
    tracks.push_back(
        Loads("segments-without-anchor-and-rulers", independent::BinaryHead(CompleteTrack()) + segments));
    tracks.push_back(Loads("rulers-twice", head + rulers + rulers + segments));
    tracks.push_back(Loads("segments-twice", head + rulers + segments + segments));
    tracks.push_back(
        Loads("anchor-twice", head + independent::BinaryAnchor(CompleteTrack()) + rulers + segments));
    tracks.push_back(Loads("unknown-tag", head + Number('Z') + segments));
    tracks.push_back(Loads("tags-of-the-other-byte-order", head + Number(0x52000000) + segments));
    tracks.push_back(Loads("a-megabyte-after-the-blocks", CompleteFile() + std::string(1 << 20, 'x')));
    Track track = CompleteTrack();
    for (const std::int32_t first : {1, -1, 2147483647}) {
        track.segments[0].path = first;
        tracks.push_back(
            NoPaths("first-point-in-path-" + std::to_string(first), independent::BinaryFile(track)));
    }
    track = CompleteTrack();
    track.segments[1].path = 5;
    tracks.push_back(Loads("path-numbers-with-a-gap", independent::BinaryFile(track)));
    track = CompleteTrack();
    track.segments[0].relativeX = kNoNumber;
    track.segments[1].relativeY = -kInfinity;
    tracks.push_back(Loads("points-that-are-no-numbers", independent::BinaryFile(track)));
    track.segments[0].relativeX = 1e308;
    track.segments[1].relativeY = -1e308;
    tracks.push_back(Loads("points-far-away", independent::BinaryFile(track)));
    track = CompleteTrack();
    for (auto& segment : track.segments)
        segment.method = segment.length = segment.width = segment.space = -2147483647 - 1;
    tracks.push_back(Loads("the-smallest-parameters", independent::BinaryFile(track)));
    for (auto& segment : track.segments)
        segment.method = segment.length = segment.width = segment.space = 2147483647;
    tracks.push_back(Loads("the-largest-parameters", independent::BinaryFile(track)));
    for (auto& segment : track.segments)
        segment.method = segment.length = segment.width = segment.space = 0;
    tracks.push_back(Loads("parameters-of-zero", independent::BinaryFile(track)));
}

} // namespace

std::vector<HostileTrack> HostileBinaryTracks() {
    std::vector<HostileTrack> tracks;
    AddCutHeaders(tracks);
    AddCutBlocks(tracks);
    AddMagics(tracks);
    AddSizes(tracks);
    AddHeights(tracks);
    AddRecords(tracks);
    return tracks;
}
