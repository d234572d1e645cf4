#include "IndependentTrack.h"

#include <bit>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace independent {

namespace {

constexpr std::string_view kTag("Track  \0", 8);

[[noreturn]] void Malformed(const std::string& what) {
    throw std::runtime_error("not a complete track file: " + what);
}

// Bytes are least significant first, and are combined by arithmetic.

void PutBits(std::string& bytes, std::uint64_t bits, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>((bits >> (8 * i)) & 0xFFU);
}

void Put(std::string& bytes, std::int32_t number) {
    PutBits(bytes, static_cast<std::uint32_t>(number), 4);
}

void Put(std::string& bytes, double number) {
    PutBits(bytes, std::bit_cast<std::uint64_t>(number), 8);
}

class Bytes {
  public:
    explicit Bytes(const std::string& content) : bytes(content) {}

    std::uint64_t Bits(int count) {
        if (bytes.size() - place < static_cast<std::size_t>(count))
            Malformed("it ends at byte " + std::to_string(bytes.size()));
        std::uint64_t bits = 0;
        for (int i = 0; i < count; ++i)
            bits |= std::uint64_t{static_cast<unsigned char>(bytes[place + static_cast<std::size_t>(i)])}
                    << (8 * i);
        place += static_cast<std::size_t>(count);
        return bits;
    }
    std::int16_t Short() { return static_cast<std::int16_t>(Bits(2)); }
    std::int32_t Int() { return static_cast<std::int32_t>(Bits(4)); }
    double Double() { return std::bit_cast<double>(Bits(8)); }
    std::int32_t Count() {
        const std::int32_t count = Int();
        if (count < 0)
            Malformed("a count of " + std::to_string(count));
        return count;
    }
    void Expect(std::int32_t tag) {
        const std::int32_t found = Int();
        if (found != tag)
            Malformed("tag " + std::to_string(found) + " in place of " + std::to_string(tag));
    }
    [[nodiscard]] bool AtEnd() const { return place == bytes.size(); }

  private:
    const std::string& bytes;
    std::size_t place = 0;
};

void RequireNumbered(const Track& track) {
    for (std::size_t i = 0; i < track.rulers.size(); ++i) {
        if (track.rulers[i].index != static_cast<std::int32_t>(i))
            Malformed("ruler " + std::to_string(i) + " has another number");
    }
    std::int32_t path = -1;
    std::int32_t point = 0;
    for (const Segment& segment : track.segments) {
        const bool starts = segment.path == path + 1;
        path = starts ? path + 1 : path;
        point = starts ? 0 : point + 1;
        if (path < 0 || segment.path != path || segment.point != point)
            Malformed("point " + std::to_string(segment.point) + " of path " + std::to_string(segment.path) +
                      " is in a wrong place");
    }
}

} // namespace

std::string BinaryHead(const Track& track) {
    std::string bytes(kTag);
    Put(bytes, 1);
    for (const double number : {track.xResolution, track.yResolution, track.zResolution, track.xOffset,
                                track.yOffset, track.zOffset})
        Put(bytes, number);
    Put(bytes, track.width);
    Put(bytes, track.height);
    for (const std::int16_t cell : track.cells)
        PutBits(bytes, static_cast<std::uint16_t>(cell), 2);
    return bytes;
}

std::string BinaryAnchor(const Track& track) {
    std::string bytes("A\0\0\0", 4);
    for (const double number : track.anchor)
        Put(bytes, number);
    return bytes;
}

std::string BinaryRulers(const Track& track) {
    std::string bytes("R\0\0\0", 4);
    Put(bytes, static_cast<std::int32_t>(track.rulers.size()));
    for (const Ruler& ruler : track.rulers) {
        for (const std::int32_t number : {ruler.index, ruler.path, ruler.segment})
            Put(bytes, number);
        for (const double number : {ruler.x1, ruler.y1, ruler.x2, ruler.y2})
            Put(bytes, number);
        Put(bytes, ruler.method);
        Put(bytes, ruler.width);
    }
    return bytes;
}

std::string BinarySegments(const Track& track) {
    std::string bytes("S\0\0\0", 4);
    Put(bytes, static_cast<std::int32_t>(track.segments.size()));
    for (const Segment& segment : track.segments) {
        Put(bytes, segment.path);
        Put(bytes, segment.point);
        for (const double number : {segment.x, segment.y, segment.relativeX, segment.relativeY})
            Put(bytes, number);
        for (const std::int32_t number : {segment.method, segment.length, segment.width, segment.space})
            Put(bytes, number);
    }
    return bytes;
}

std::string BinaryFile(const Track& track) {
    return BinaryHead(track) + BinaryAnchor(track) + BinaryRulers(track) + BinarySegments(track);
}

Track ReadBinary(const std::string& content) {
    Bytes bytes(content);
    Track track;
    if (!content.starts_with(kTag))
        Malformed("the first eight bytes");
    bytes.Bits(8);
    bytes.Expect(1);
    for (double* number : {&track.xResolution, &track.yResolution, &track.zResolution, &track.xOffset,
                           &track.yOffset, &track.zOffset})
        *number = bytes.Double();
    track.width = bytes.Count();
    track.height = bytes.Count();
    for (std::int64_t cells = std::int64_t{track.width} * track.height; cells > 0; --cells)
        track.cells.push_back(bytes.Short());
    bytes.Expect('A');
    for (double& number : track.anchor)
        number = bytes.Double();
    bytes.Expect('R');
    for (std::int32_t count = bytes.Count(); count > 0; --count) {
        Ruler ruler;
        for (std::int32_t* number : {&ruler.index, &ruler.path, &ruler.segment})
            *number = bytes.Int();
        for (double* number : {&ruler.x1, &ruler.y1, &ruler.x2, &ruler.y2})
            *number = bytes.Double();
        ruler.method = bytes.Int();
        ruler.width = bytes.Double();
        track.rulers.push_back(ruler);
    }
    bytes.Expect('S');
    for (std::int32_t count = bytes.Count(); count > 0; --count) {
        Segment segment;
        segment.path = bytes.Int();
        segment.point = bytes.Int();
        for (double* number : {&segment.x, &segment.y, &segment.relativeX, &segment.relativeY})
            *number = bytes.Double();
        for (std::int32_t* number : {&segment.method, &segment.length, &segment.width, &segment.space})
            *number = bytes.Int();
        track.segments.push_back(segment);
    }
    if (!bytes.AtEnd())
        Malformed("bytes after the last block");
    RequireNumbered(track);
    return track;
}

namespace {

/// Joins its arguments by commas and ends the line.
class Row {
  public:
    Row& Add(const std::string& field) {
        line += (first ? "" : ",") + field;
        first = false;
        return *this;
    }
    Row& Add(std::int32_t number) { return Add(std::to_string(number)); }
    Row& Add(double number) { return Add(TextNumber(number)); }
    [[nodiscard]] std::string End() const { return line + "\n"; }

  private:
    std::string line;
    bool first = true;
};

using Fields = std::vector<std::string>;

Fields FieldsOf(const std::string& line) {
    Fields fields(1);
    for (const char letter : line) {
        if (letter == ',')
            fields.emplace_back();
        else
            fields.back() += letter;
    }
    return fields;
}

/// A number that fills the field, in the classic locale.
double Number(const std::string& field) {
    std::istringstream stream(field);
    stream.imbue(std::locale::classic());
    double number = 0;
    if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof())
        Malformed("\"" + field + "\" in place of a number");
    return number;
}

std::int32_t Integer(const std::string& field) {
    return static_cast<std::int32_t>(Number(field));
}

class Lines {
  public:
    explicit Lines(const std::string& content) : stream(content) {}

    /// The fields of the next line that is not empty; none at the end.
    Fields Next() {
        std::string line;
        while (std::getline(stream, line)) {
            if (!line.empty())
                return FieldsOf(line);
        }
        return {};
    }

    /// The fields of the next line, which must exist and have this number of fields.
    Fields Next(std::size_t count) {
        Fields fields = Next();
        if (fields.size() != count)
            Malformed(std::to_string(fields.size()) + " fields in place of " + std::to_string(count));
        return fields;
    }

  private:
    std::istringstream stream;
};

bool IsEnd(const Fields& fields) {
    if (fields.empty())
        Malformed("a section without its end");
    return fields.front() == "End";
}

void ReadMap(Lines& lines, Track& track) {
    lines.Next();
    const Fields info = lines.Next(8);
    std::size_t place = 0;
    for (double* number : {&track.xResolution, &track.yResolution, &track.zResolution, &track.xOffset,
                           &track.yOffset, &track.zOffset})
        *number = Number(info[place++]);
    track.width = Integer(info[6]);
    track.height = Integer(info[7]);
    const auto columns = static_cast<std::size_t>(track.width);
    const Fields positions = lines.Next(columns + 1);
    for (std::size_t column = 1; column <= columns; ++column)
        track.columnPositions.push_back(Number(positions[column]));
    for (std::int32_t row = 0; row < track.height; ++row) {
        const Fields fields = lines.Next(columns + 1);
        track.rowPositions.push_back(Number(fields[0]));
        for (std::size_t column = 1; column <= columns; ++column)
            track.heights.push_back(fields[column].empty() ? std::nullopt
                                                           : std::optional(Number(fields[column])));
    }
    if (!IsEnd(lines.Next()))
        Malformed("more rows than the information says");
}

void ReadAnchor(Lines& lines, Track& track) {
    lines.Next(3);
    const Fields fields = lines.Next(3);
    for (std::size_t i = 0; i < track.anchor.size(); ++i)
        track.anchor[i] = Number(fields[i]);
}

void ReadRulers(Lines& lines, Track& track) {
    lines.Next(9);
    for (Fields fields = lines.Next(); !IsEnd(fields); fields = lines.Next()) {
        if (fields.size() != 9)
            Malformed("a ruler line");
        track.rulers.push_back({Integer(fields[0]), Integer(fields[1]), Integer(fields[2]), Number(fields[3]),
                                Number(fields[4]), Number(fields[5]), Number(fields[6]), Integer(fields[7]),
                                Number(fields[8])});
    }
}

void ReadSegments(Lines& lines, Track& track) {
    lines.Next(10);
    for (Fields fields = lines.Next(); !IsEnd(fields); fields = lines.Next()) {
        if (fields.size() != 10)
            Malformed("a segment line");
        track.segments.push_back({Integer(fields[0]), Integer(fields[1]), Number(fields[2]),
                                  Number(fields[3]), Number(fields[4]), Number(fields[5]), Integer(fields[6]),
                                  Integer(fields[7]), Integer(fields[8]), Integer(fields[9])});
    }
}

} // namespace

std::string TextNumber(double number) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    return stream.str();
}

std::string TextMap(const Track& track) {
    std::string text = "Info\nXResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n";
    text += Row()
                .Add(track.xResolution)
                .Add(track.yResolution)
                .Add(track.zResolution)
                .Add(track.xOffset)
                .Add(track.yOffset)
                .Add(track.zOffset)
                .Add(track.width)
                .Add(track.height)
                .End();
    Row columns;
    columns.Add(std::string("YX"));
    for (const double position : track.columnPositions)
        columns.Add(position);
    text += columns.End();
    std::size_t cell = 0;
    for (const double position : track.rowPositions) {
        Row row;
        row.Add(position);
        for (std::int32_t column = 0; column < track.width; ++column) {
            const std::optional<double>& height = track.heights.at(cell++);
            row.Add(height ? TextNumber(*height) : std::string());
        }
        text += row.End();
    }
    return text + "End\n\n";
}

std::string TextAnchor(const Track& track) {
    return "Anchor\nX,Y,Angle\n" +
           Row().Add(track.anchor[0]).Add(track.anchor[1]).Add(track.anchor[2]).End() + "End\n\n";
}

std::string TextPaths(const Track& track) {
    std::string text = "Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\n";
    for (const Ruler& ruler : track.rulers) {
        text += Row()
                    .Add(ruler.index)
                    .Add(ruler.path)
                    .Add(ruler.segment)
                    .Add(ruler.x1)
                    .Add(ruler.y1)
                    .Add(ruler.x2)
                    .Add(ruler.y2)
                    .Add(ruler.method)
                    .Add(ruler.width)
                    .End();
    }
    text += "End\n\nSegment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n";
    for (const Segment& point : track.segments) {
        text += Row()
                    .Add(point.path)
                    .Add(point.point)
                    .Add(point.x)
                    .Add(point.y)
                    .Add(point.relativeX)
                    .Add(point.relativeY)
                    .Add(point.method)
                    .Add(point.length)
                    .Add(point.width)
                    .Add(point.space)
                    .End();
    }
    return text + "End\n";
}

std::string TextFile(const Track& track) {
    return TextMap(track) + TextAnchor(track) + TextPaths(track);
}

Track ReadText(const std::string& bytes) {
    Lines lines(bytes);
    Track track;
    bool hasMap = false;
    bool hasSegments = false;
    for (Fields fields = lines.Next(); !fields.empty(); fields = lines.Next()) {
        const std::string& head = fields.front();
        if (head == "Info") {
            ReadMap(lines, track);
            hasMap = true;
        } else if (head == "Anchor") {
            ReadAnchor(lines, track);
            if (!IsEnd(lines.Next()))
                Malformed("the anchor section");
        } else if (head == "Ruler") {
            ReadRulers(lines, track);
        } else if (head == "Segment") {
            ReadSegments(lines, track);
            hasSegments = true;
        } else {
            Malformed("a line that begins with \"" + head + "\"");
        }
    }
    if (!hasMap || !hasSegments)
        Malformed("a section is missing");
    RequireNumbered(track);
    return track;
}

} // namespace independent
