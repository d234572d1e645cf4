#include "document/formats/CsvSteps.h"

#include "document/formats/Guarded.h"
#include "document/formats/HeightColours.h"
#include "document/formats/HeightRange.h"
#include "document/formats/RawHeight.h"
#include "document/formats/RawHeightCheck.h"
#include "document/formats/TrackInfo.h"
#include "log/Log.h"

#include <QImage>

#include <array>
#include <cstring>

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
