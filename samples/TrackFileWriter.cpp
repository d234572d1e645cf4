#include "samples/TrackFileWriter.h"

#include <bit>
#include <fstream>
#include <stdexcept>

namespace {

// Micrometres. The world's origin is in the middle of the sensor's line; heights are relative to the sensor's
// zero.
constexpr std::int64_t kXOffset = -50'000;
constexpr std::int64_t kYOffset = 12'500;
constexpr std::int64_t kZOffset = 40'000;

constexpr int kMethod = 1;
constexpr int kLength = 40;
constexpr int kWidth = 12;
constexpr int kSpace = 20;

/// A path's place in the world, in ten-thousandths of a micrometre.
std::int64_t World(int relative, int cells, int pitch, std::int64_t offset) {
    return static_cast<std::int64_t>(relative) * cells * pitch + offset * 10'000;
}

/// The first segments differ from the others, so that parameters can be distinguished.
int LengthOf(std::size_t point) {
    return kLength + 10 * static_cast<int>(point % 3);
}

class TextTrack {
  public:
    TextTrack(std::ostream& file, const MachinedPart& part) : file(file), part(part) {}

    void WriteHead() {
        file << "Info\nXResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
             << Decimal(part.Pitch(), 3) << ',' << Decimal(part.Pitch(), 3) << ','
             << Decimal(MachinedPart::kMicrometresPerUnit, 3) << ',' << Decimal(kXOffset, 3) << ','
             << Decimal(kYOffset, 3) << ',' << Decimal(kZOffset, 3) << ',' << part.Columns() << ','
             << part.Rows() << "\nYX";
        for (int column = 0; column < part.Columns(); ++column)
            file << ',' << Decimal(kXOffset + static_cast<std::int64_t>(column) * part.Pitch(), 3);
        file << '\n';
    }

    /// A height is half a unit further from zero than its raw value, which is truncated toward zero.
    void WriteRow(int row, const std::vector<std::int16_t>& cells) {
        std::string line = Decimal(kYOffset + static_cast<std::int64_t>(row) * part.Pitch(), 3);
        for (const std::int16_t cell : cells) {
            line += ',';
            if (cell == MachinedPart::kNoMeasurement)
                continue;
            constexpr std::int64_t kUnit = MachinedPart::kMicrometresPerUnit;
            line += Decimal(kZOffset + cell * kUnit + (cell < 0 ? -kUnit : kUnit) / 2, 3);
        }
        file << line << '\n';
    }

    void WriteTail(const std::vector<Path>& paths) {
        file << "End\n\nAnchor\nX,Y,Angle\n0,0,0\nEnd\n\n"
             << "Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\nEnd\n\n"
             << "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n";
        for (std::size_t track = 0; track < paths.size(); ++track)
            for (std::size_t point = 0; point < paths[track].size(); ++point)
                WritePoint(track, point, paths[track][point]);
        file << "End\n";
    }

  private:
    void WritePoint(std::size_t track, std::size_t point, const PathPoint& place) {
        file << track << ',' << point << ','
             << Decimal(World(place.x, part.Columns(), part.Pitch(), kXOffset), 7) << ','
             << Decimal(World(place.y, part.Rows(), part.Pitch(), kYOffset), 7) << ',' << Decimal(place.x, 4)
             << ',' << Decimal(place.y, 4) << ',' << kMethod << ',' << LengthOf(point) << ',' << kWidth << ','
             << kSpace << '\n';
    }

    std::ostream& file;
    const MachinedPart& part;
};

class BinaryTrack {
  public:
    BinaryTrack(std::ostream& file, const MachinedPart& part) : file(file), part(part) {}

    void WriteHead() {
        file.write("Track  ", 8);
        Put(1);
        PutReal(part.Pitch() / 1e3);
        PutReal(part.Pitch() / 1e3);
        PutReal(MachinedPart::kMicrometresPerUnit / 1e3);
        PutReal(static_cast<double>(kXOffset) / 1e3);
        PutReal(static_cast<double>(kYOffset) / 1e3);
        PutReal(static_cast<double>(kZOffset) / 1e3);
        Put(part.Columns());
        Put(part.Rows());
    }

    void WriteRow(int /*row*/, const std::vector<std::int16_t>& cells) {
        std::string bytes;
        for (const std::int16_t cell : cells) {
            const auto bits = static_cast<std::uint16_t>(cell);
            bytes += static_cast<char>(bits & 0xFFU);
            bytes += static_cast<char>(bits >> 8U);
        }
        file << bytes;
    }

    void WriteTail(const std::vector<Path>& paths) {
        Put('A');
        for (int value = 0; value < 3; ++value)
            PutReal(0.0);
        Put('R');
        Put(0);
        Put('S');
        std::size_t count = 0;
        for (const Path& path : paths)
            count += path.size();
        Put(static_cast<std::int32_t>(count));
        for (std::size_t track = 0; track < paths.size(); ++track)
            for (std::size_t point = 0; point < paths[track].size(); ++point)
                WritePoint(track, point, paths[track][point]);
    }

  private:
    void WritePoint(std::size_t track, std::size_t point, const PathPoint& place) {
        Put(static_cast<std::int32_t>(track));
        Put(static_cast<std::int32_t>(point));
        PutReal(static_cast<double>(World(place.x, part.Columns(), part.Pitch(), kXOffset)) / 1e7);
        PutReal(static_cast<double>(World(place.y, part.Rows(), part.Pitch(), kYOffset)) / 1e7);
        PutReal(place.x / 1e4);
        PutReal(place.y / 1e4);
        Put(kMethod);
        Put(LengthOf(point));
        Put(kWidth);
        Put(kSpace);
    }

    void Put(std::int32_t value) { PutBytes(static_cast<std::uint32_t>(value), 4); }
    void PutReal(double value) { PutBytes(std::bit_cast<std::uint64_t>(value), 8); }
    /// The least significant byte first.
    void PutBytes(std::uint64_t bits, int count) {
        for (int byte = 0; byte < count; ++byte)
            file.put(static_cast<char>((bits >> (8 * byte)) & 0xFFU));
    }

    std::ostream& file;
    const MachinedPart& part;
};

template<typename Track>
void Write(Track track, const MachinedPart& part, const std::vector<Path>& paths) {
    track.WriteHead();
    for (int row = 0; row < part.Rows(); ++row)
        track.WriteRow(row, part.Row(row));
    track.WriteTail(paths);
}

} // namespace

std::string Decimal(std::int64_t value, int places) {
    std::string digits = std::to_string(value < 0 ? -value : value);
    const auto fraction = static_cast<std::size_t>(places);
    if (digits.size() <= fraction)
        digits.insert(0, fraction + 1 - digits.size(), '0');
    digits.insert(digits.size() - fraction, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.')
        digits.pop_back();
    return value < 0 ? "-" + digits : digits;
}

std::filesystem::path PathOf(const std::string& path) {
    return std::u8string(path.begin(), path.end());
}

void WriteTrackFile(const std::string& path, const MachinedPart& part, const SampleOptions& options) {
    std::ofstream file(PathOf(path), std::ios::binary | std::ios::trunc);
    if (!file)
        throw std::runtime_error("cannot write " + path);
    const std::vector<Path> paths = options.paths ? part.Paths() : std::vector<Path>();
    if (options.format == TrackFormat::Text)
        Write(TextTrack(file, part), part, paths);
    else
        Write(BinaryTrack(file, part), part, paths);
    file.close();
    if (file.good())
        return;
    if (std::filesystem::is_regular_file(PathOf(path)))
        std::filesystem::remove(PathOf(path));
    throw std::runtime_error("cannot write all of " + path);
}
