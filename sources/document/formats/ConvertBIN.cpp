#include "document/formats/ConvertBIN.h"

#include "document/formats/BinaryTrackLayout.h"
#include "document/formats/Converter.h"
#include "document/formats/HeightColours.h"
#include "document/formats/HeightRange.h"
#include "document/formats/TrackBytes.h"
#include "log/Log.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>

using namespace BinaryTrackLayout;

namespace {

using Magic = std::array<char, kMagicSize>;

void LogNotFound(const std::string& path) {
    LOG_LINE(ERROR) << "Could not find file (" << path << ")";
}

/// Reads the first bytes. @return whether they are those of a binary track; if not, an ERROR line says so.
bool ReadMagic(TrackByteReader& bytes, const std::string& path, Magic& magic) {
    if (bytes.Remaining() >= static_cast<std::int64_t>(kMagicSize)) {
        bytes.Read(magic.data(), magic.size());
        if (std::string_view(magic.data(), magic.size()).find(kMagicWord) != std::string_view::npos)
            return true;
    }
    LogNotFound(path);
    return false;
}

bool BeginsAsTrack(TrackByteReader& bytes, const std::string& path) {
    Magic magic{};
    return ReadMagic(bytes, path, magic);
}

/// Reads the version. @return whether its layout is known; if not, an ERROR line says so.
bool ReadKnownVersion(TrackByteReader& bytes) {
    const auto version = bytes.Read<std::int32_t>();
    if (version == kVersion)
        return true;
    LOG_LINE(ERROR) << "Wrong file version (" << version << ")";
    return false;
}

/// Reads what is between the version and the height map. Fields before an early end of the file are kept.
void ReadHeader(TrackByteReader& bytes, TrackInfo& info) {
    info.xResolution = bytes.Read<double>();
    info.yResolution = bytes.Read<double>();
    info.zResolution = bytes.Read<double>();
    info.xOffset = bytes.Read<double>();
    info.yOffset = bytes.Read<double>();
    info.zOffset = bytes.Read<double>();
    info.width = bytes.Read<std::int32_t>();
    info.height = bytes.Read<std::int32_t>();
}

void WriteHeader(TrackByteWriter& out, std::string_view magic, const TrackInfo& info) {
    out.Write(magic);
    out.Write(kVersion);
    out.Write(info.xResolution);
    out.Write(info.yResolution);
    out.Write(info.zResolution);
    out.Write(info.xOffset);
    out.Write(info.yOffset);
    out.Write(info.zOffset);
    out.Write(info.width);
    out.Write(info.height);
}

std::string Dimensions(const TrackInfo& info) {
    return std::to_string(info.width) + " x " + std::to_string(info.height);
}

/// The bytes of one row of the height map. @throws std::runtime_error for a negative dimension.
std::int64_t RowSize(const TrackInfo& info) {
    if (info.width < 0 || info.height < 0)
        throw std::runtime_error("Invalid height map size " + Dimensions(info));
    return std::int64_t{info.width} * static_cast<std::int64_t>(sizeof(std::int16_t));
}

/// The bytes of the height map; the largest dimensions give just less than an int64 holds.
std::int64_t MapSize(const TrackInfo& info) {
    return RowSize(info) * info.height;
}

/// The bytes of the height map that comes next in the file. @throws std::runtime_error when the file does not
/// hold all of it.
std::int64_t MapSizeInFile(const TrackByteReader& bytes, const TrackInfo& info) {
    const std::int64_t size = MapSize(info);
    if (size > bytes.Remaining())
        throw std::runtime_error("Height map of " + Dimensions(info) + " cells is not in the file");
    return size;
}

/// Large enough that the pieces bypass the stream's buffer, small enough to stay in the processor's cache.
constexpr std::int64_t kSamplesAtOnce = std::int64_t{64} * 1024;

/// Passes the samples of the next `size` bytes to `take`, up to `samplesAtOnce` at a time.
template<typename Take>
void ReadInPieces(TrackByteReader& bytes, std::int64_t size, std::int64_t samplesAtOnce, Take take) {
    constexpr auto kSampleSize = static_cast<std::int64_t>(sizeof(std::int16_t));
    std::int64_t left = size / kSampleSize;
    std::vector<std::int16_t> piece(static_cast<std::size_t>(std::min(left, samplesAtOnce)));
    while (left > 0) {
        const auto samples = std::span(piece).first(static_cast<std::size_t>(std::min(left, samplesAtOnce)));
        bytes.Read(samples.data(), samples.size_bytes());
        take(std::span<const std::int16_t>(samples));
        left -= static_cast<std::int64_t>(samples.size());
    }
}

/// Reads past the height map and fills the height range. Of a truncated map the complete rows count.
void ReadRange(TrackByteReader& bytes, TrackInfo& info) {
    SampleRange range({info.zResolution, info.zOffset});
    info.minHeight = range.Lowest();
    info.maxHeight = range.Highest();
    const std::int64_t rowSize = RowSize(info);
    const std::int64_t mapSize = MapSize(info);
    const std::int64_t completeRows = rowSize > 0 ? std::min(mapSize, bytes.Remaining()) / rowSize : 0;
    ReadInPieces(bytes, completeRows * rowSize, kSamplesAtOnce,
                 [&range](std::span<const std::int16_t> samples) { range.Add(samples); });
    info.minHeight = range.Lowest();
    info.maxHeight = range.Highest();
    bytes.Skip(mapSize - completeRows * rowSize);
}

/// The tag of the next block; none at the end of the file, where a block is missing.
std::optional<std::int32_t> NextTag(TrackByteReader& bytes) {
    if (bytes.Remaining() == 0)
        return std::nullopt;
    return bytes.Read<std::int32_t>();
}

/// Skips the anchor if there is one. @return the tag of the block after it.
std::optional<std::int32_t> SkipAnchor(TrackByteReader& bytes) {
    const std::optional<std::int32_t> tag = NextTag(bytes);
    if (tag != kAnchorTag)
        return tag;
    bytes.Skip(kAnchorSize);
    return NextTag(bytes);
}

/// Skips the ruler records if `tag` is theirs. @return the tag of the block after them.
std::optional<std::int32_t> SkipRulers(TrackByteReader& bytes, std::optional<std::int32_t> tag) {
    if (tag != kRulerTag)
        return tag;
    bytes.Skip(bytes.Read<std::int32_t>() * kRecordSize);
    return NextTag(bytes);
}

/// One field of a record, at its offset in bytes.
template<typename Number>
Number FieldAt(const std::array<char, kRecordSize>& record, std::size_t offset) {
    Number number{};
    std::memcpy(&number, record.data() + offset, sizeof number);
    return number;
}

/// The point of a segment record; its own index (at 4) and its file coordinates (at 8 and 16) are not used.
PathPoint PointOf(const std::array<char, kRecordSize>& record) {
    PathPoint point;
    point.position = {FieldAt<double>(record, 24), FieldAt<double>(record, 32)};
    point.method = FieldAt<std::int32_t>(record, 40);
    point.length = FieldAt<std::int32_t>(record, 44);
    point.width = FieldAt<std::int32_t>(record, 48);
    point.space = FieldAt<std::int32_t>(record, 52);
    return point;
}

/// Reads the count and as many records; those before an early end of the file are kept.
void ReadSegments(TrackByteReader& bytes, std::vector<TrackPath>& paths) {
    const auto count = bytes.Read<std::int32_t>();
    if (count < 0)
        throw std::runtime_error("Invalid segment count " + std::to_string(count));
    std::array<char, kRecordSize> record{};
    for (std::int32_t i = 0; i < count; ++i) {
        bytes.Read(record.data(), record.size());
        AppendPoint(FieldAt<std::int32_t>(record, 0), PointOf(record), paths);
    }
}

/// Makes the image that the map is painted on. @throws std::runtime_error when there is no memory for it.
QImage ImageFor(const TrackInfo& info) {
    QImage image(info.width, info.height, QImage::Format_RGB888);
    if (image.isNull())
        throw std::runtime_error("No image of " + Dimensions(info) + " pixels can be made");
    return image;
}

/// Paints the complete map, reading as many rows at a time as fit into a piece.
void PaintRows(TrackByteReader& bytes, std::int64_t mapSize, const SampleRamp& ramp, QImage& image) {
    const auto width = static_cast<std::size_t>(image.width());
    const std::int64_t rowsAtOnce = std::max<std::int64_t>(1, kSamplesAtOnce / image.width());
    int y = 0;
    ReadInPieces(bytes, mapSize, rowsAtOnce * image.width(), [&](std::span<const std::int16_t> samples) {
        for (; !samples.empty(); samples = samples.subspan(width))
            ramp.Paint(samples.first(width), image.scanLine(y++));
    });
}

int ReadInfoFrom(const std::string& path, TrackInfo& info) {
    TrackByteReader bytes(path);
    if (!BeginsAsTrack(bytes, path))
        return 1;
    if (bytes.Read<std::int32_t>() != kVersion)
        return 0;
    ReadHeader(bytes, info);
    ReadRange(bytes, info);
    if (NextTag(bytes) == kAnchorTag)
        bytes.Skip(kAnchorSize);
    return 0;
}

/// Goes to the height map, which must have the dimensions in `info`.
/// @return false after an ERROR line when the file is not a track of a known version
bool GoToMap(TrackByteReader& bytes, const std::string& path, const TrackInfo& info) {
    if (!BeginsAsTrack(bytes, path) || !ReadKnownVersion(bytes))
        return false;
    TrackInfo header;
    ReadHeader(bytes, header);
    if (header.width != info.width || header.height != info.height)
        throw std::runtime_error("Height map of " + Dimensions(header) + " cells where " + Dimensions(info) +
                                 " were expected");
    return true;
}

int ReadRawHeightsFrom(const std::string& path, const TrackInfo& info, HeightMap& heights) {
    TrackByteReader bytes(path);
    if (!GoToMap(bytes, path, info))
        return 1;
    const auto size = static_cast<std::size_t>(MapSizeInFile(bytes, info));
    HeightMap read(size / sizeof(std::int16_t));
    bytes.Read(read.data(), size);
    heights = std::move(read);
    return 0;
}

int ReadAnchorFrom(const std::string& path, TrackInfo& info) {
    TrackByteReader bytes(path);
    if (!BeginsAsTrack(bytes, path) || !ReadKnownVersion(bytes))
        return 1;
    TrackInfo header;
    ReadHeader(bytes, header);
    bytes.Skip(MapSizeInFile(bytes, header));
    info.anchorX = info.anchorY = info.anchorAngle = 0.0;
    if (NextTag(bytes) != kAnchorTag)
        return 0;
    info.anchorX = bytes.Read<double>();
    info.anchorY = bytes.Read<double>();
    info.anchorAngle = bytes.Read<double>();
    return 0;
}

int ReadImageFrom(const std::string& path, const TrackInfo& info, const HeightRamp& ramp, QImage& image) {
    TrackByteReader bytes(path);
    if (!GoToMap(bytes, path, info))
        return 1;
    if (!ramp.IsValid()) {
        LOG_LINE(ERROR) << "Invalid depth range for pixel retrieval from CSV";
        return 1;
    }
    const std::int64_t mapSize = MapSizeInFile(bytes, info);
    if (mapSize == 0)
        throw std::runtime_error("Height map without cells");
    QImage painted = ImageFor(info);
    PaintRows(bytes, mapSize, SampleRamp(ramp, {info.zResolution, info.zOffset}), painted);
    image = std::move(painted);
    return 0;
}

int ReadPathFrom(const std::string& path, std::vector<TrackPath>& paths) {
    TrackByteReader bytes(path);
    if (!BeginsAsTrack(bytes, path))
        return 1;
    paths.clear();
    if (!ReadKnownVersion(bytes))
        return 1;
    TrackInfo header;
    ReadHeader(bytes, header);
    bytes.Skip(MapSizeInFile(bytes, header));
    if (SkipRulers(bytes, SkipAnchor(bytes)) == kSegmentTag)
        ReadSegments(bytes, paths);
    return 0;
}

void WriteAnchor(TrackByteWriter& out, double x, double y, double angle) {
    out.Write(kAnchorTag);
    out.Write(x);
    out.Write(y);
    out.Write(angle);
}

int WriteTrackTo(const std::string& path, const TrackInfo& info, const HeightMap& heights,
                 const std::vector<TrackPath>& paths, const WorldTransform& transform) {
    AtomicFile file(path);
    if (!file.IsOpen())
        return kTargetNotWritable;
    const auto mapSize = static_cast<std::size_t>(MapSize(info));
    if (heights.size() < mapSize / sizeof(std::int16_t))
        throw std::runtime_error("Only " + std::to_string(heights.size()) + " cells for a height map of " +
                                 Dimensions(info));
    TrackByteWriter out(file);
    WriteHeader(out, kMagic, info);
    out.Write(heights.data(), mapSize);
    WriteAnchor(out, info.anchorX, info.anchorY, info.anchorAngle);
    WriteBinaryPathBlocks(out, paths, transform);
    return CommitTarget(file, path);
}

/// Copies the anchor if there is one. Any other tag belongs to an old block, which is dropped.
void CopyAnchor(TrackByteReader& bytes, TrackByteWriter& out) {
    if (NextTag(bytes) != kAnchorTag)
        return;
    const auto x = bytes.Read<double>();
    const auto y = bytes.Read<double>();
    const auto angle = bytes.Read<double>();
    WriteAnchor(out, x, y, angle);
}

int UpdatePathTo(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths,
                 const WorldTransform& transform) {
    TrackByteReader bytes(original);
    if (!bytes.IsOpen()) {
        LogNotFound(original);
        return kOriginalNotReadable;
    }
    AtomicFile file(target);
    if (!file.IsOpen())
        return kTargetNotWritable;
    Magic magic{};
    if (!ReadMagic(bytes, original, magic) || !ReadKnownVersion(bytes))
        return kOriginalNotReadable;
    TrackInfo header;
    ReadHeader(bytes, header);
    TrackByteWriter out(file);
    WriteHeader(out, {magic.data(), magic.size()}, header);
    ReadInPieces(
        bytes, MapSizeInFile(bytes, header), kSamplesAtOnce,
        [&out](std::span<const std::int16_t> samples) { out.Write(samples.data(), samples.size_bytes()); });
    CopyAnchor(bytes, out);
    WriteBinaryPathBlocks(out, paths, transform);
    bytes.Close(); // it may be the target
    return CommitTarget(file, target);
}

} // namespace

int ConvertBIN::ReadInfo(const std::string& path, TrackInfo& info) {
    return Guarded("[ReadInfoFromBin] (EXCEPTION) ", [&] { return ReadInfoFrom(path, info); });
}

int ConvertBIN::ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                          QImage& image) {
    return Guarded("[ReadImageFromBin] (EXCEPTION) ",
                   [&] { return ReadImageFrom(path, info, HeightRamp(lowHeight, highHeight), image); });
}

int ConvertBIN::ReadHeightMap(const std::string& /*path*/, TrackInfo /*info*/, HeightMap& /*heights*/,
                              std::int64_t& /*size*/) {
    return -1;
}

int ConvertBIN::ReadRawHeights(const std::string& path, const TrackInfo& info, HeightMap& heights) {
    return Guarded("[ReadRawHeightsFromBin] (EXCEPTION) ",
                   [&] { return ReadRawHeightsFrom(path, info, heights); });
}

int ConvertBIN::ReadAnchor(const std::string& path, TrackInfo& info) {
    return Guarded("[ReadAnchorFromBin] (EXCEPTION) ", [&] { return ReadAnchorFrom(path, info); });
}

int ConvertBIN::ReadPath(const std::string& path, std::vector<TrackPath>& paths) {
    return Guarded("[ReadPathFromBin] (EXCEPTION) ", [&] { return ReadPathFrom(path, paths); });
}

int ConvertBIN::WriteTrack(const std::string& target, const TrackInfo& info, const HeightMap& heights,
                           std::int64_t /*size*/, const std::vector<TrackPath>& paths, double widthScale,
                           double xOffset, double yOffset, double xScale, double yScale) {
    const WorldTransform transform{widthScale, xOffset, yOffset, xScale, yScale};
    return Guarded(
        "[WriteTrackToBin] (EXCEPTION) ",
        [&] { return WriteTrackTo(target, info, heights, paths, transform); }, kTargetNotWritable);
}

int ConvertBIN::UpdatePath(const std::string& original, const std::string& target,
                           const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) {
    const WorldTransform transform{widthScale, xOffset, yOffset, xScale, yScale};
    return Guarded(
        "[UpdatePathInBin] (EXCEPTION) ", [&] { return UpdatePathTo(original, target, paths, transform); },
        kOriginalNotReadable);
}
