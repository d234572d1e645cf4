#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A second, small writer and reader of both encodings of track files, written from the description of the
/// format without code of the editor: where the two agree, they agree with the description. Everything
/// is plain data, with the numbers as in a file.
namespace independent {

/// One tick line of the ruler; `x1` to `y2` in file coordinates, `width` times the writer's width scale.
struct Ruler {
    std::int32_t index = 0;
    std::int32_t path = 0;
    std::int32_t segment = 0;
    double x1 = 0;
    double y1 = 0;
    double x2 = 0;
    double y2 = 0;
    std::int32_t method = 0;
    double width = 0;

    bool operator==(const Ruler&) const = default;
};

/// One point of a path; `x` and `y` in file coordinates, the relative ones normalised to the canvas.
struct Segment {
    std::int32_t path = 0;
    std::int32_t point = 0;
    double x = 0;
    double y = 0;
    double relativeX = 0;
    double relativeY = 0;
    std::int32_t method = 0;
    std::int32_t length = 0;
    std::int32_t width = 0;
    std::int32_t space = 0;

    bool operator==(const Segment&) const = default;
};

/// The content of a track file.
struct Track {
    double xResolution = 1;
    double yResolution = 1;
    double zResolution = 1;
    double xOffset = 0;
    double yOffset = 0;
    double zOffset = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    /// Row-major; the binary encoding holds these.
    std::vector<std::int16_t> cells;
    /// Row-major world heights, none where there is no measurement; the text encoding holds these and the
    /// positions of columns and rows.
    std::vector<std::optional<double>> heights;
    std::vector<double> columnPositions;
    std::vector<double> rowPositions;
    std::array<double, 3> anchor{};
    std::vector<Ruler> rulers;
    std::vector<Segment> segments;

    bool operator==(const Track&) const = default;
};

/// The raw value of a cell without a measurement.
constexpr std::int16_t kNoMeasurement = -32768;

/// A complete binary file: header, cells, anchor, rulers, segments.
std::string BinaryFile(const Track& track);

/// The first part of a binary file: header and cells. The blocks follow it.
std::string BinaryHead(const Track& track);

/// Single blocks of a binary file, tag included.
std::string BinaryAnchor(const Track& track);
std::string BinaryRulers(const Track& track);
std::string BinarySegments(const Track& track);

/// A complete text file with all sections in the usual order.
std::string TextFile(const Track& track);

/// The sections of a text file.
std::string TextMap(const Track& track);
std::string TextAnchor(const Track& track);
/// The ruler and the segment section, as they are written at the end.
std::string TextPaths(const Track& track);

/// A number as text files hold it: general format, 6 significant digits.
std::string TextNumber(double number);

/// Reads a binary file. @throws std::runtime_error for anything but a complete, well-formed file with all
/// three blocks and nothing after them, whose records are numbered in order.
Track ReadBinary(const std::string& bytes);

/// Reads a text file. @throws std::runtime_error for anything but a complete, well-formed file with an info
/// section and a segment section, whose records are numbered in order.
Track ReadText(const std::string& bytes);

} // namespace independent
