#pragma once

#include "document/formats/Converter.h"
#include "document/formats/CsvScan.h"
#include "document/formats/Heights.h"

#include <cstdint>
#include <vector>

class HeightColours;
class QImage;
class RawHeightCheck;

/// The text encoding of track files.
class ConvertCSV final : public Converter {
  public:
    int ReadInfo(const std::string& path, TrackInfo& info) override;
    int ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                  QImage& image) override;
    int ReadHeightMap(const std::string& path, TrackInfo info, HeightMap& heights,
                      std::int64_t& size) override;
    /// The same for a map that is to be stored in raw values alone. A map that lacks rows is a failure, as
    /// for an image; so is a map that raw values cannot hold (RawHeightCheck); the log says at which cell.
    int ReadHeightMapToStore(const std::string& path, const TrackInfo& info, HeightMap& heights,
                             std::int64_t& size);
    /// Whether the file has the section that `ReadPath` reads.
    [[nodiscard]] static bool HasPathSection(const std::string& path);
    int ReadPath(const std::string& path, std::vector<TrackPath>& paths) override;
    int WriteTrack(const std::string& target, const TrackInfo& info, const HeightMap& heights,
                   std::int64_t size, const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                   double yOffset, double xScale, double yScale) override;
    int UpdatePath(const std::string& original, const std::string& target,
                   const std::vector<TrackPath>& paths, double widthScale, double xOffset, double yOffset,
                   double xScale, double yScale) override;
};

// The steps of reading a text track file, one line each. Each returns 0, or 1 when the line is refused, with
// the reason logged at ERROR; none of them throws.

/// Takes the eight fields of the info line.
int ExtractInfo(const CsvLine& line, TrackInfo& info);

/// Takes the world position of each column from the height map's header line.
int ExtractYValues(const CsvLine& line, std::int32_t width, std::vector<double>& columnPositions);

/// Takes a row's world position and widens the height range by the row's finite heights.
int FindMinMaxHeight(const CsvLine& line, std::int64_t row, std::vector<double>& rowPositions,
                     double& minHeight, double& maxHeight);

/// Paints one row of the image. Cells that the row does not have stay as they are.
int ExtractRowPixelValues(const CsvLine& line, std::int64_t row, HeightColours& colours, QImage& image);

/// Fills one row of raw heights. Cells that the row does not have stay as they are.
int ExtractRowPixelData(const CsvLine& line, std::int64_t row, std::int32_t width, double zOffset,
                        double zResolution, HeightMap& heights);

/// The same for a map that is to be stored: `check` sees each height on its way.
int ExtractRowPixelData(const CsvLine& line, std::int64_t row, std::int32_t width, RawHeightCheck& check,
                        HeightMap& heights);
