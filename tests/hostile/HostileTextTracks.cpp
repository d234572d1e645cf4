#include "HostileTrack.h"

#include <stdexcept>
#include <string_view>

namespace {

const std::string kEscape = "[ReadInfoFromCsv] (EXCEPTION) ";
const std::string kEscapeInPaths = "[ReadPathFromCsv] (EXCEPTION) ";
const std::string kNoMap = "No height map data";
const std::string kTooFew = "Height map data is no enough";
const std::string kNoRange = "Invalid depth range for pixel retrieval from CSV";
const std::string kEmptyLine = "Invalid image conversion row (empty)";
const std::string kEmptyInfo = "Cannot retrieve height map info from empty item vector";

/// A complete text track of 3 x 2 cells and one path of two points; every line is unique.
const std::string kTrack = "Info\n"
                           "XResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
                           "0.1,0.1,0.01,0,0,-5,3,2\n"
                           "YX,0.0,0.1,0.2\n"
                           "10.0,1.25,,1.30\n"
                           "10.1,1.27,1.29,1.31\n"
                           "End\n"
                           "Anchor\n"
                           "X,Y,Angle\n"
                           "1,2,3\n"
                           "End\n"
                           "Segment\n"
                           "Track,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
                           "0,0,12.5,3.2,0.25,0.4,1,100,50,100\n"
                           "0,1,20.5,3.2,0.65,0.4,1,100,50,100\n"
                           "End\n";

const std::string kInfoLine = "0.1,0.1,0.01,0,0,-5,3,2";
const std::string kFirstPoint = "0,0,12.5,3.2,0.25,0.4,1,100,50,100";

/// The complete track with one place changed.
std::string With(std::string_view place, const std::string& change) {
    std::string track = kTrack;
    const std::size_t at = track.find(place);
    if (at == std::string::npos)
        throw std::logic_error("no such place in the track: " + std::string(place));
    return track.replace(at, place.size(), change);
}

std::string WithInfo(const std::string& line) {
    return With(kInfoLine, line);
}

std::string WithPoint(const std::string& line) {
    return With(kFirstPoint, line);
}

std::string FirstLines(std::size_t count) {
    std::size_t at = 0;
    for (; count > 0; --count)
        at = kTrack.find('\n', at) + 1;
    return kTrack.substr(0, at);
}

std::string EveryByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

HostileTrack Loads(const std::string& name, const std::string& content) {
    return {name, content, Outcome::Good(), Outcome::Good(), Outcome::Good(), Outcome::Good()};
}

/// The information cannot be read; the paths, which do not need it, have the outcome `paths`.
HostileTrack NoInfo(const std::string& name, const std::string& content, const std::string& line,
                    const Outcome& paths = Outcome::Good()) {
    return {name, content, Outcome::Fails(line), Outcome::Unasked(), Outcome::Unasked(), paths};
}

HostileTrack NoImage(const std::string& name, const std::string& content, const std::string& line,
                     const Outcome& map = Outcome::Good()) {
    return {name, content, Outcome::Good(), Outcome::Fails(line), map, Outcome::Good()};
}

HostileTrack NoPaths(const std::string& name, const std::string& content, const Outcome& paths) {
    return {name, content, Outcome::Good(), Outcome::Good(), Outcome::Good(), paths};
}

/// Cut after each of its lines, from none to all but the last.
void AddCutTracks(std::vector<HostileTrack>& tracks) {
    constexpr std::size_t kLines = 16;
    for (std::size_t lines = 0; lines < kLines; ++lines) {
        HostileTrack track = Loads("cut-after-line-" + std::to_string(lines), FirstLines(lines));
        if (lines < 12)
            track.paths = Outcome::FailsSilently();
        if (lines == 1 || lines == 2)
            track.info = Outcome::Fails(kEmptyInfo);
        else if (lines < 4)
            track.info = Outcome::Fails(kNoMap);
        else if (lines == 8 || lines == 9)
            track.info = Outcome::Fails(kEmptyLine);
        else if (lines < 6)
            track.image = Outcome::Fails(kTooFew);
        if (track.info.result != 0)
            track.image = track.map = Outcome::Unasked();
        tracks.push_back(track);
    }
}

void AddStrangeFiles(std::vector<HostileTrack>& tracks) {
    const Outcome silent = Outcome::FailsSilently();
    tracks.push_back(NoInfo("line-feeds-only", "\n\n\n\n", kNoMap, silent));
    tracks.push_back(NoInfo("carriage-returns-only", "\r\r\r", kNoMap, silent));
    tracks.push_back(NoInfo("one-zero-byte", std::string(1, '\0'), kNoMap, silent));
    tracks.push_back(NoInfo("zeros", std::string(4096, '\0'), kNoMap, silent));
    tracks.push_back(NoInfo("every-byte", EveryByte(), kEscape, Outcome::Fails(kEscapeInPaths)));
    tracks.push_back(NoInfo("commas-only", std::string(10'000, ','), kNoMap, silent));
    tracks.push_back(NoInfo("no-line-feed-at-all", "Info,YX,End,Segment", kEmptyInfo, silent));
    tracks.push_back(NoInfo("a-picture", "\x89PNG\r\n\x1a\n", kNoMap, silent));
    tracks.push_back(Loads("byte-order-mark", "\xef\xbb\xbf" + kTrack));
    tracks.push_back(NoInfo("sixteen-bit-letters", std::string("I\0n\0f\0o\0\n\0", 10), kNoMap, silent));
    tracks.push_back(Loads("a-line-of-a-megabyte", std::string(1 << 20, 'x') + "\n" + kTrack));
    tracks.push_back(Loads("sections-twice", kTrack + kTrack));
    tracks.push_back(
        Loads("zero-bytes-between-sections", With("Anchor\n", std::string(100, '\0') + "\nAnchor\n")));
    tracks.push_back(Loads("last-line-without-line-feed", kTrack.substr(0, kTrack.size() - 1)));
    tracks.push_back(NoInfo("keywords-in-lower-case",
                            "info\nh\n" + kInfoLine + "\nyx,0,1,2\n1,1,1,1\nend\nsegment\n", kNoMap, silent));
    tracks.push_back(NoInfo("map-ahead-of-its-dimensions",
                            "YX,0,1,2\n1,1,2,3\nEnd\nInfo\nh\n" + kInfoLine + "\n",
                            "Invalid item count=4 for column world positions", silent));
}

void AddQuotes(std::vector<HostileTrack>& tracks) {
    const Outcome badPaths = Outcome::Fails(kEscapeInPaths);
    tracks.push_back(NoInfo("unknown-escape-in-the-first-line", "\\q\n" + kTrack, kEscape, badPaths));
    tracks.push_back(NoInfo("escape-at-the-end-of-a-line", With("Info\n", "x\\\nInfo\n"), kEscape, badPaths));
    tracks.push_back(NoInfo("unknown-escape-in-a-row", With("1.27", "\\x"), kEscape, badPaths));
    tracks.push_back(NoInfo("unknown-escape-in-the-anchor", With("1,2,3", "\\1,2,3"), kEscape, badPaths));
    tracks.push_back(
        NoInfo("unknown-escape-in-a-path", WithPoint("0,0,\\.5,1,1,1,1,1,1,1"), kEscape, badPaths));
    tracks.push_back(NoInfo("open-quote-in-the-info-line", WithInfo("\"" + kInfoLine),
                            "Invalid item count=1 for height map info extraction"));
    tracks.push_back(NoInfo("open-quote-in-the-map-header", With("YX,", "\"YX,"),
                            "Invalid item count=1 for column world positions"));
    tracks.push_back(Loads("open-quote-in-a-row", With("10.1,1.27", "10.1,\"1.27")));
    tracks.push_back(NoPaths("open-quote-in-a-path", WithPoint("\"" + kFirstPoint),
                             Outcome::Fails("[ReadPathFromCsv] (EXCEPTION) Invalid item count=1 ")));
    tracks.push_back(Loads("everything-quoted", With("1.27,1.29,1.31", "\"1.27\",\"1.29\",\"1.31\"")));
    tracks.push_back(Loads("line-feed-escape-in-a-cell", With("1.27", "\\n1.27")));
    tracks.push_back(Loads("quoted-comma-in-a-cell", With("1.27", "\"1,27\"")));
    tracks.push_back(Loads("quote-within-a-keyword", With("Anchor", "An\"cho\"r")));
    tracks.push_back(Loads("a-hundred-quotes", With("1.27", std::string(100, '"'))));
    tracks.push_back(
        NoInfo("an-escape-in-ten-thousand", "\\\\" + std::string(10'000, '\\') + "\\q\n", kEscape, badPaths));
}

void AddInfos(std::vector<HostileTrack>& tracks) {
    const auto count = [](int items) {
        return "Invalid item count=" + std::to_string(items) + " for height map info extraction";
    };
    tracks.push_back(NoInfo("info-of-1-field", WithInfo("0.1"), count(1)));
    tracks.push_back(NoInfo("info-of-7-fields", WithInfo("0.1,0.1,0.01,0,0,-5,3"), count(7)));
    tracks.push_back(NoInfo("info-of-9-fields", WithInfo(kInfoLine + ",1"), count(9)));
    tracks.push_back(
        NoInfo("info-of-10000-fields", WithInfo(kInfoLine + std::string(9992, ',')), count(10'000)));
    tracks.push_back(NoInfo("info-line-empty", WithInfo(""), kEmptyInfo));
    tracks.push_back(NoInfo("info-line-missing", With(kInfoLine + "\n", ""), count(4)));
    const auto columns = [](int items) {
        return "Invalid item count=" + std::to_string(items) + " for column world positions";
    };
    tracks.push_back(NoInfo("info-of-words", WithInfo("a,b,c,d,e,f,g,h"), columns(4)));
    tracks.push_back(NoInfo("info-of-blanks", WithInfo(" , , , , , , , "), columns(4)));
    for (const char* const width : {"0", "-1", "-3", "-2147483648", "2147483647", "2147483648", "3000000000",
                                    "99999999999999999999", "2", "4"})
        tracks.push_back(NoInfo(std::string("width-") + width,
                                WithInfo("0.1,0.1,0.01,0,0,-5," + std::string(width) + ",2"),
                                "Invalid item count=4 for column world positions"));
    // The C library reads it as a 64-bit number and drops the upper half.
    tracks.push_back(Loads("width-4294967299", WithInfo("0.1,0.1,0.01,0,0,-5,4294967299,2")));
    tracks.push_back(NoInfo("height-0", WithInfo("0.1,0.1,0.01,0,0,-5,3,0"), "Invalid row=0 "));
    tracks.push_back(NoInfo("height-1", WithInfo("0.1,0.1,0.01,0,0,-5,3,1"), "Invalid row=1 "));
    tracks.push_back(NoInfo("height-negative", WithInfo("0.1,0.1,0.01,0,0,-5,3,-1"), kTooFew));
    tracks.push_back(NoInfo("height-most-negative", WithInfo("0.1,0.1,0.01,0,0,-5,3,-2147483648"), kTooFew));
    tracks.push_back(NoInfo("height-2147483647", WithInfo("0.1,0.1,0.01,0,0,-5,3,2147483647"), kTooFew));
    tracks.push_back(NoImage("height-3", WithInfo("0.1,0.1,0.01,0,0,-5,3,3"), kTooFew));
    tracks.push_back(NoImage("height-300", WithInfo("0.1,0.1,0.01,0,0,-5,3,300"), kTooFew));
    tracks.push_back(Loads("z-resolution-0", WithInfo("0.1,0.1,0,0,0,-5,3,2")));
    tracks.push_back(Loads("z-resolution-nan", WithInfo("0.1,0.1,nan,0,0,-5,3,2")));
    tracks.push_back(Loads("z-resolution-tiny", WithInfo("0.1,0.1,1e-320,0,0,-5,3,2")));
    tracks.push_back(Loads("z-resolution-infinite", WithInfo("0.1,0.1,inf,0,0,-5,3,2")));
    tracks.push_back(Loads("z-offset-infinite", WithInfo("0.1,0.1,0.01,0,0,-inf,3,2")));
    tracks.push_back(Loads("x-resolution-not-finite", WithInfo("nan,-inf,0.01,1e999,-1e999,-5,3,2")));
    tracks.push_back(Loads("a-number-of-ten-thousand-digits",
                           WithInfo("0." + std::string(10'000, '3') + ",0.1,0.01,0,0,-5,3,2")));
}

void AddMaps(std::vector<HostileTrack>& tracks) {
    const std::string header = "YX,0.0,0.1,0.2";
    tracks.push_back(NoInfo("map-header-one-short", With(header, "YX,0.0,0.1"),
                            "Invalid item count=3 for column world positions"));
    tracks.push_back(NoInfo("map-header-one-long", With(header, header + ",0.3"),
                            "Invalid item count=5 for column world positions"));
    tracks.push_back(NoInfo("map-header-of-its-corner-alone", With(header, "YX"),
                            "Invalid item count=1 for column world positions"));
    tracks.push_back(Loads("map-header-of-words", With(header, "YX,a,b,c")));
    tracks.push_back(NoInfo("map-header-missing", With(header + "\n", ""), kNoMap));
    tracks.push_back(
        NoInfo("a-row-too-many", With("End\nAnchor", "10.2,1,1,1\nEnd\nAnchor"), "Invalid row=2 "));
    tracks.push_back(NoImage("a-row-too-few", With("10.1,1.27,1.29,1.31\n", ""), kTooFew));
    tracks.push_back(NoImage("no-rows", With("10.0,1.25,,1.30\n10.1,1.27,1.29,1.31\n", ""), kTooFew));
    tracks.push_back(NoImage("a-row-too-long", With("1.31", "1.31,1.32"),
                             "Image width=3 does not match pixel value count=4 from csv file"));
    tracks.push_back(Loads("a-row-too-short", With("10.1,1.27,1.29,1.31", "10.1,1.27")));
    tracks.push_back(Loads("a-row-of-its-position-alone", With("10.1,1.27,1.29,1.31", "10.1")));
    tracks.push_back(NoInfo("map-without-its-end", With("End\nAnchor\n", "Anchor\n"), "Invalid row=2 "));
    tracks.push_back(Loads("blank-lines-in-the-map", With("10.1,1.27", "\n\n\r\n10.1,1.27")));
    tracks.push_back(
        NoImage("every-cell-empty", With("1.25,,1.30\n10.1,1.27,1.29,1.31", ",,\n10.1,,,"), kNoRange));
    tracks.push_back(
        NoImage("every-cell-equal", With("1.25,,1.30\n10.1,1.27,1.29,1.31", "7,7,7\n10.1,7,7,7"), kNoRange));
    tracks.push_back(NoImage("every-cell-nan",
                             With("1.25,,1.30\n10.1,1.27,1.29,1.31", "nan,nan,nan\n10.1,nan,nan,nan"),
                             kNoRange));
    tracks.push_back(NoImage("every-cell-infinite",
                             With("1.25,,1.30\n10.1,1.27,1.29,1.31", "inf,-inf,inf\n10.1,1e400,-1e400,inf"),
                             kNoRange));
    tracks.push_back(Loads("one-cell-nan", With("1.27", "nan")));
    tracks.push_back(Loads("one-cell-infinite", With("1.27", "-inf")));
    tracks.push_back(Loads("one-cell-beyond-a-double", With("1.27", "1e400")));
    tracks.push_back(Loads("the-largest-doubles", With("1.25,,1.30", "1.7e308,,-1.7e308")));
    tracks.push_back(Loads("the-smallest-double", With("1.27", "4.9e-324")));
    tracks.push_back(Loads("a-cell-beyond-sixteen-bits", With("1.27", "1e6")));
    tracks.push_back(Loads("a-cell-of-words", With("1.27", "high")));
    tracks.push_back(Loads("a-hexadecimal-cell", With("1.27", "0x1p4")));
    tracks.push_back(Loads("a-cell-with-a-decimal-comma", With("1.25,,1.30", "1,25")));
    tracks.push_back(Loads("cells-of-blanks", With("1.27,1.29,1.31", " ,\t, ")));
    tracks.push_back(NoInfo("another-width-after-the-map", kTrack + "Info\nh\n0.1,0.1,0.01,0,0,-5,4,2\n",
                            "Invalid item count=4 for column world positions"));
    tracks.push_back(NoInfo("another-height-after-the-map", kTrack + "Info\nh\n0.1,0.1,0.01,0,0,-5,3,3\n",
                            "Invalid item count=4 for column world positions"));
    tracks.push_back(NoInfo("a-second-map-of-another-size", kTrack + "YX,1,2\n1,1,1\nEnd\n",
                            "Invalid item count=3 for column world positions"));
}

void AddAnchorsAndPaths(std::vector<HostileTrack>& tracks) {
    const std::string fewFields = "[ReadPathFromCsv] (EXCEPTION) Invalid item count=";
    tracks.push_back(NoInfo("anchor-line-empty", With("1,2,3\n", "\n"), kEmptyLine));
    tracks.push_back(NoInfo("anchor-of-2-fields", With("1,2,3\n", "1,2\n"), kEscape));
    tracks.push_back(Loads("anchor-of-1000-fields", With("1,2,3", "1,2,3" + std::string(997, ','))));
    tracks.push_back(Loads("anchor-not-finite", With("1,2,3", "nan,inf,-1e400")));
    tracks.push_back(
        NoPaths("no-path-section", kTrack.substr(0, kTrack.find("Segment")), Outcome::FailsSilently()));
    tracks.push_back(
        NoPaths("path-section-misspelt", With("Segment\n", "Segmemt\n"), Outcome::FailsSilently()));
    tracks.push_back(
        NoPaths("point-of-9-fields", WithPoint("0,0,1,1,1,1,1,1,1"), Outcome::Fails(fewFields + "9 ")));
    tracks.push_back(NoPaths("point-of-1-field", WithPoint("0"), Outcome::Fails(fewFields + "1 ")));
    tracks.push_back(Loads("point-of-1000-fields", WithPoint(kFirstPoint + std::string(990, ','))));
    for (const char* const number : {"1", "-1", "2147483647", "-2147483648"})
        tracks.push_back(NoPaths(std::string("first-point-in-path-") + number,
                                 WithPoint(number + kFirstPoint.substr(1)), Outcome::Fails(kEscapeInPaths)));
    tracks.push_back(Loads("points-of-words", WithPoint("x,x,x,x,x,x,x,x,x,x")));
    tracks.push_back(Loads("points-that-are-no-numbers", WithPoint("0,0,nan,nan,nan,nan,1,1,1,1")));
    tracks.push_back(Loads("points-at-infinity", WithPoint("0,0,inf,inf,inf,-inf,1,1,1,1")));
    tracks.push_back(Loads("points-far-away", WithPoint("0,0,0,0,1e300,-1e300,1,1,1,1")));
    tracks.push_back(Loads("parameters-beyond-32-bits",
                           WithPoint("0,0,0,0,0.1,0.1,99999999999,-99999999999,2147483647,-2147483648")));
    tracks.push_back(Loads("parameters-of-zero", WithPoint("0,0,0,0,0.1,0.1,0,0,0,0")));
    tracks.push_back(Loads("negative-parameters", WithPoint("0,0,0,0,0.1,0.1,-1,-1,-1,-1")));
    tracks.push_back(Loads("path-numbers-with-a-gap", With("0,1,20.5", "7,1,20.5")));
    tracks.push_back(Loads("path-section-without-end", kTrack.substr(0, kTrack.rfind("End"))));
    tracks.push_back(Loads("blank-lines-among-points", WithPoint("\n\n" + kFirstPoint + "\n\n")));
    std::string many;
    for (int path = 1; path <= 2000; ++path)
        many += std::to_string(path) + ",0,0,0,0.5,0.5,1,1,1,1\n";
    tracks.push_back(Loads("two-thousand-paths-of-one-point", kTrack.substr(0, kTrack.rfind("End")) + many));
}

} // namespace

std::vector<HostileTrack> HostileTextTracks() {
    std::vector<HostileTrack> tracks;
    AddCutTracks(tracks);
    AddStrangeFiles(tracks);
    AddQuotes(tracks);
    AddInfos(tracks);
    AddMaps(tracks);
    AddAnchorsAndPaths(tracks);
    return tracks;
}
