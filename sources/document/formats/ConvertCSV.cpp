#include "document/formats/ConvertCSV.h"

#include "document/formats/CsvPathWriter.h"
#include "document/formats/CsvPaths.h"
#include "document/formats/CsvScan.h"
#include "document/formats/CsvSteps.h"
#include "document/formats/Guarded.h"
#include "document/formats/HeightColours.h"
#include "document/formats/RawHeightCheck.h"
#include "document/formats/TargetFile.h"
#include "document/formats/WorldTransform.h"
#include "log/Log.h"

#include <QImage>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace {

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

/// Whether a file of this size can hold a map of these dimensions. A full row takes a byte a cell at least; a
/// small map is let through all the same, since rows may be short.
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

/// Reads the height map whose header line the scan stands at.
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

/// Reads the anchor section whose head line the scan stands at.
int ReadAnchor(CsvScan& scan, TrackInfo& info) {
    scan.MoveBehindHeader();
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

/// An info section behind the map may tell other dimensions than those that the map was read with.
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
            scan.MoveBehindHeader();
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
