#pragma once

#include "document/formats/CsvLine.h"
#include "document/formats/HeightMap.h"

#include <cstdint>
#include <vector>

class HeightColours;
class QImage;
class RawHeightCheck;
struct TrackInfo;
struct TrackPath;

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
