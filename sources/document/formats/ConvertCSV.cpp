#include "document/formats/ConvertCSV.h"

#include "document/formats/Converter.h"
#include "document/formats/CsvPaths.h"
#include "document/formats/CsvScan.h"
#include "document/formats/HeightColours.h"
#include "document/formats/HeightRange.h"
#include "document/formats/Heights.h"
#include "document/formats/RawHeightCheck.h"
#include "document/formats/TrackInfo.h"
#include "log/Log.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

constexpr std::size_t kPixelBytes = std::tuple_size_v<HeightRamp::Colour>;

int EmptyRow(const CsvLine& line, std::int64_t row) {
    line.LogPlace();
    LOG_LINE(ERROR) << "Cannot retrieve pixel values for row=" << row << " empty item vector";
    return 1;
}

int InvalidRow(const CsvLine& line, std::int64_t row) {
    line.LogPlace();
    LOG_LINE(ERROR) << "Invalid row=" << row << " for pixel values retrieval";
    return 1;
}

double TakeDouble(CsvFields& fields) {
    double value = 0.0;
    fields.NextNumber(value);
    return value;
}

/// The colour of the next field's height; black for an empty field.
const HeightRamp::Colour& NextPlainColour(CsvFields& fields, HeightColours& colours) {
    double height = 0.0;
    return fields.NextNumber(height) ? colours.ColourOf(height) : HeightRamp::kBlack;
}

void PaintRow(CsvFields& fields, HeightColours& colours, unsigned char* pixel) {
    PackedDecimal packed;
    for (; fields.HasNext(); pixel += kPixelBytes) {
        const HeightRamp::Colour& colour =
            fields.NextPacked(packed) ? colours.ColourOf(packed) : NextPlainColour(fields, colours);
        std::memcpy(pixel, colour.data(), kPixelBytes);
    }
}

void WidenRange(CsvFields& fields, HeightRange& range) {
    PackedDecimal packed;
    while (fields.HasNext()) {
        double height = 0.0;
        if (fields.NextPacked(packed))
            range.Add(packed);
        else if (fields.NextNumber(height))
            range.Add(height);
    }
}

/// Fills one row of raw heights with what `rawValue` makes of a column and its height.
template<typename RawValue>
int FillRow(const CsvLine& line, std::int64_t row, std::int32_t width, HeightMap& heights,
            RawValue rawValue) {
    return Guarded("[ExtractRowPixelData] (EXCEPTION) ", [&] {
        if (!line.HasFields())
            return EmptyRow(line, row);
        const auto cells = static_cast<std::int64_t>(heights.size());
        if (row < 0 || width <= 0 || row >= cells / width)
            return InvalidRow(line, row);
        CsvFields fields(line);
        fields.Next();
        auto cell = heights.begin() + row * width;
        for (std::int32_t column = 0; column < width && fields.HasNext(); ++column, ++cell) {
            double height = 0.0;
            *cell = fields.NextNumber(height) ? rawValue(column, height) : kNoMeasurement;
        }
        return 0;
    });
}

constexpr const char* kImageTag = "[ReadImageFromCsv] (EXCEPTION) ";
constexpr const char* kPathTag = "[ReadPathFromCsv] (EXCEPTION) ";
constexpr const char* kPathSection = "Segment";

int NoFile(const std::string& path) {
    LOG_LINE(ERROR) << "Could not find csv file (" << path << ")";
    return 1;
}

int NoHeightMap() {
    LOG_LINE(ERROR) << "No height map data";
    return 1;
}

int NotEnough() {
    LOG_LINE(ERROR) << "Height map data is no enough";
    return 1;
}

/// Whether a file of this size can hold a map of these dimensions. A full row takes at least a byte a cell; a
/// small map is accepted anyway, since rows may be short.
bool CanHold(std::uint64_t fileSize, const TrackInfo& info) {
    constexpr std::uint64_t kSmallMap = std::uint64_t{1} << 20;
    if (info.width <= 0 || info.height <= 0)
        return false;
    const std::uint64_t cells =
        static_cast<std::uint64_t>(info.width) * static_cast<std::uint64_t>(info.height);
    return cells <= std::max(fileSize, kSmallMap);
}

QImage BlackImage(const TrackInfo& info) {
    QImage image(info.width, info.height, QImage::Format_RGB888);
    if (image.isNull())
        throw std::bad_alloc();
    std::fill_n(image.bits(), image.sizeInBytes(), std::uint8_t{0});
    return image;
}

/// Reads the height map. The scan is at its header line.
int ReadHeightRange(CsvScan& scan, TrackInfo& info) {
    if (ExtractYValues(scan.Line(), info.width, info.columnPositions) != 0)
        return 1;
    if (info.height < 0 || static_cast<std::uint64_t>(info.height) > scan.FileSize())
        return NotEnough();
    info.rowPositions.assign(static_cast<std::size_t>(info.height), 0.0);
    for (std::int64_t row = 0; scan.NextInSection(); ++row) {
        if (FindMinMaxHeight(scan.Line(), row, info.rowPositions, info.minHeight, info.maxHeight) != 0)
            return 1;
    }
    return 0;
}

/// Reads the anchor section. The scan is at its first line.
int ReadAnchor(CsvScan& scan, TrackInfo& info) {
    scan.MoveAfterHeader();
    if (!scan.Line().HasFields()) {
        scan.Line().LogPlace();
        LOG_LINE(ERROR) << "Invalid image conversion row (empty)";
        return 1;
    }
    CsvFields fields(scan.Line());
    for (double* const number : {&info.anchorX, &info.anchorY, &info.anchorAngle}) {
        if (!fields.HasNext()) {
            scan.Line().LogPlace();
            throw std::runtime_error("The anchor line has fewer than three fields");
        }
        *number = ToDouble(fields.Next());
    }
    return 0;
}

/// An info section after the map may give other dimensions than those that the map was read with.
int CheckDimensions(const TrackInfo& info) {
    const auto columns = static_cast<std::int64_t>(info.columnPositions.size());
    if (columns == info.width && static_cast<std::int64_t>(info.rowPositions.size()) == info.height)
        return 0;
    LOG_LINE(ERROR) << "Invalid item count=" << columns + 1 << " for column world positions";
    return 1;
}

int ReadInfoSections(CsvScan& scan, TrackInfo& info) {
    info.anchorX = info.anchorY = info.anchorAngle = 0.0;
    bool hasHeightMap = false;
    while (scan.Next()) {
        int result = 0;
        if (scan.Line().StartsWith("Info")) {
            scan.MoveAfterHeader();
            result = ExtractInfo(scan.Line(), info);
        } else if (scan.Line().StartsWith("YX")) {
            hasHeightMap = true;
            result = ReadHeightRange(scan, info);
        } else if (scan.Line().StartsWith("Anchor")) {
            result = ReadAnchor(scan, info);
        }
        if (result != 0)
            return result;
    }
    return hasHeightMap ? CheckDimensions(info) : NoHeightMap();
}

int PaintHeightMap(CsvScan& scan, HeightColours colours, QImage& image) {
    std::int64_t row = 0;
    for (; scan.NextInSection(); ++row) {
        if (ExtractRowPixelValues(scan.Line(), row, colours, image) != 0)
            return 1;
    }
    if (row >= image.height())
        return 0;
    scan.Line().LogPlace();
    return NotEnough();
}

/// Reads the raw heights, each row by `fillRow`, which is given the line and the row's number.
/// @param rows how many rows the file's map has
template<typename FillRow>
int ReadRows(const std::string& path, const TrackInfo& info, HeightMap& heights, std::int64_t& size,
             std::int64_t& rows, FillRow fillRow) {
    CsvScan scan(path);
    if (!scan.IsOpen())
        return NoFile(path);
    if (!scan.Find("YX"))
        return NoHeightMap();
    if (!CanHold(scan.FileSize(), info))
        return NotEnough();
    const auto width = static_cast<std::size_t>(info.width);
    heights.assign(width * static_cast<std::size_t>(info.height), kNoMeasurement);
    size = std::int64_t{info.width} * info.width;
    for (rows = 0; scan.NextInSection(); ++rows) {
        if (fillRow(scan.Line(), rows) != 0)
            return 1;
    }
    return 0;
}

int CheckHeights(const RawHeightCheck& check) {
    const std::string failure = check.Failure();
    if (failure.empty())
        return 0;
    LOG_LINE(ERROR) << failure;
    return 1;
}

} // namespace

int ExtractInfo(const CsvLine& line, TrackInfo& info) {
    return Guarded("[ExtractInfo] (EXCEPTION) ", [&] {
        if (!line.HasFields()) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Cannot retrieve height map info from empty item vector";
            return 1;
        }
        if (const std::size_t count = line.FieldCount(); count != 8) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Invalid item count=" << count << " for height map info extraction";
            return 1;
        }
        CsvFields fields(line);
        for (double* const number : {&info.xResolution, &info.yResolution, &info.zResolution, &info.xOffset,
                                     &info.yOffset, &info.zOffset})
            *number = TakeDouble(fields);
        info.width = ToInt32(fields.Next());
        info.height = ToInt32(fields.Next());
        return 0;
    });
}

int ExtractYValues(const CsvLine& line, std::int32_t width, std::vector<double>& columnPositions) {
    return Guarded("[ExtractYValues] (EXCEPTION) ", [&] {
        if (!line.HasFields()) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Cannot retrieve height map y values from empty item vector";
            return 1;
        }
        const std::size_t count = line.FieldCount();
        if (static_cast<std::int64_t>(count) != std::int64_t{width} + 1) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Invalid item count=" << count << " for column world positions";
            return 1;
        }
        columnPositions.clear();
        columnPositions.reserve(count - 1);
        CsvFields fields(line);
        fields.Next();
        while (fields.HasNext())
            columnPositions.push_back(TakeDouble(fields));
        return 0;
    });
}

int FindMinMaxHeight(const CsvLine& line, std::int64_t row, std::vector<double>& rowPositions,
                     double& minHeight, double& maxHeight) {
    return Guarded("[FindMinMaxHeight] (EXCEPTION) ", [&] {
        if (!line.HasFields())
            return EmptyRow(line, row);
        if (row < 0 || row >= static_cast<std::int64_t>(rowPositions.size()))
            return InvalidRow(line, row);
        CsvFields fields(line);
        rowPositions[static_cast<std::size_t>(row)] = TakeDouble(fields);
        HeightRange range(minHeight, maxHeight);
        WidenRange(fields, range);
        minHeight = range.Lowest();
        maxHeight = range.Highest();
        return 0;
    });
}

int ExtractRowPixelValues(const CsvLine& line, std::int64_t row, HeightColours& colours, QImage& image) {
    return Guarded("[ExtractRowPixelValues] (EXCEPTION) ", [&] {
        if (!line.HasFields())
            return EmptyRow(line, row);
        if (row < 0 || row >= image.height())
            return InvalidRow(line, row);
        if (const std::size_t values = line.FieldCount() - 1;
            static_cast<std::size_t>(image.width()) < values) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Image width=" << image.width() << " does not match"
                            << " pixel value count=" << values << " from csv file";
            return 1;
        }
        if (!colours.IsValid()) {
            line.LogPlace();
            LOG_LINE(ERROR) << "Invalid depth range for pixel retrieval from CSV";
            return 1;
        }
        CsvFields fields(line);
        fields.Next();
        PaintRow(fields, colours, image.scanLine(static_cast<int>(row)));
        return 0;
    });
}

int ExtractRowPixelData(const CsvLine& line, std::int64_t row, std::int32_t width, double zOffset,
                        double zResolution, HeightMap& heights) {
    return FillRow(line, row, width, heights, [&](std::int32_t /*column*/, double height) {
        return RawHeight(height, zOffset, zResolution);
    });
}

int ExtractRowPixelData(const CsvLine& line, std::int64_t row, std::int32_t width, RawHeightCheck& check,
                        HeightMap& heights) {
    return FillRow(line, row, width, heights, [&](std::int32_t column, double height) {
        return check.RawValueOf({row, column, height});
    });
}

int ConvertCSV::ReadInfo(const std::string& path, TrackInfo& info) {
    return Guarded("[ReadInfoFromCsv] (EXCEPTION) ", [&] {
        CsvScan scan(path);
        return scan.IsOpen() ? ReadInfoSections(scan, info) : NoFile(path);
    });
}

int ConvertCSV::ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                          QImage& image) {
    return Guarded(kImageTag, [&] {
        CsvScan scan(path);
        if (!scan.IsOpen())
            return NoFile(path);
        const bool canHold = CanHold(scan.FileSize(), info);
        if (canHold)
            image = BlackImage(info);
        if (!scan.Find("YX"))
            return NoHeightMap();
        return canHold ? PaintHeightMap(scan, HeightColours({lowHeight, highHeight}), image) : NotEnough();
    });
}

int ConvertCSV::ReadHeightMap(const std::string& path, TrackInfo info, HeightMap& heights,
                              std::int64_t& size) {
    return Guarded(kImageTag, [&] {
        std::int64_t rows = 0;
        return ReadRows(path, info, heights, size, rows, [&](const CsvLine& line, std::int64_t row) {
            return ExtractRowPixelData(line, row, info.width, info.zOffset, info.zResolution, heights);
        });
    });
}

int ConvertCSV::ReadHeightMapToStore(const std::string& path, const TrackInfo& info, HeightMap& heights,
                                     std::int64_t& size) {
    return Guarded(kImageTag, [&] {
        std::int64_t rows = 0;
        RawHeightCheck check(info.zOffset, info.zResolution);
        const int result =
            ReadRows(path, info, heights, size, rows, [&](const CsvLine& line, std::int64_t row) {
                return ExtractRowPixelData(line, row, info.width, check, heights);
            });
        if (result != 0)
            return result;
        return rows < info.height ? NotEnough() : CheckHeights(check);
    });
}

bool ConvertCSV::HasPathSection(const std::string& path) {
    const int result = Guarded(kPathTag, [&] {
        CsvScan scan(path);
        return scan.IsOpen() && scan.Find(kPathSection) ? 0 : 1;
    });
    return result == 0;
}

int ConvertCSV::ReadPath(const std::string& path, std::vector<TrackPath>& paths) {
    return Guarded(kPathTag, [&] {
        CsvScan scan(path);
        if (!scan.IsOpen())
            return 1;
        paths.clear();
        if (!scan.Find(kPathSection))
            return 1;
        scan.Drop();
        while (scan.NextInSection())
            AppendPathPoint(scan.Line(), paths);
        return 0;
    });
}

int ConvertCSV::WriteTrack(const std::string&, const TrackInfo&, const HeightMap&, std::int64_t,
                           const std::vector<TrackPath>&, double, double, double, double, double) {
    return -1;
}

int ConvertCSV::UpdatePath(const std::string& original, const std::string& target,
                           const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) {
    const WorldTransform transform{widthScale, xOffset, yOffset, xScale, yScale};
    return Guarded(
        "[UpdatePathInCsv] (EXCEPTION) ", [&] { return WriteCsvPaths(original, target, paths, transform); },
        kOriginalNotReadable);
}
