#include "document/formats/HeightProbe.h"

#include "basalt/FilePath.h"
#include "document/formats/BinaryTrackLayout.h"
#include "document/formats/Converter.h"
#include "document/formats/Heights.h"
#include "document/formats/TrackBytes.h"
#include "log/Log.h"

#include <cmath>
#include <exception>
#include <stdexcept>
#include <system_error>

namespace {

/// Whether a binary file has a map of these dimensions.
bool HasBinaryMap(const std::string& file, int columns, int rows) {
    TrackByteReader bytes(file);
    bytes.Skip(BinaryTrackLayout::kDimensionsOffset);
    return bytes.Read<std::int32_t>() == columns && bytes.Read<std::int32_t>() == rows;
}

} // namespace

void HeightProbe::Open(const std::string& path, const TrackInfo& info) {
    Close();
    try {
        file = path;
        identity = IdentityOf(file);
        const std::optional<TrackEncoding> encoding = EncodingOf(file);
        if (!encoding)
            throw std::runtime_error("File could not be opened");
        if (encoding == TrackEncoding::Text)
            text.emplace(file, std::max(info.width, 1));
        else if (!HasBinaryMap(file, info.width, info.height))
            return;
        columns = info.width;
        rows = info.height;
        zResolution = info.zResolution;
        zOffset = info.zOffset;
    } catch (const std::exception& failure) {
        GiveUp(failure);
    }
}

void HeightProbe::GiveUp(const std::exception& failure) {
    LOG_LINE(INFO) << "No heights can be shown: " << failure.what();
    Close();
}

void HeightProbe::Close() {
    text.reset();
    columns = 0;
    rows = 0;
}

bool HeightProbe::Prepare(std::chrono::microseconds time) {
    try {
        return text && text->Prepare(time);
    } catch (const std::exception& failure) {
        GiveUp(failure);
        return false;
    }
}

CellHeight HeightProbe::At(int column, int row) const {
    if (column < 0 || column >= columns || row < 0 || row >= rows)
        return {};
    try {
        if (!(IdentityOf(file) == identity))
            return {};
        return text ? text->At(column, row) : BinaryHeightAt(column, row);
    } catch (const std::exception&) {
        return {}; // asked for with every move of the mouse: a log line for each would flood the log
    }
}

FileFacts HeightProbe::IdentityOf(const std::string& file) {
    FileFacts facts;
    if (const std::error_code failure = AskPath(file, &facts))
        throw std::system_error(failure, file);
    facts.permissions = 0; // they say nothing about the content
    return facts;
}

CellHeight HeightProbe::BinaryHeightAt(int column, int row) const {
    TrackByteReader bytes(file);
    bytes.Skip(BinaryTrackLayout::kMapOffset +
               (std::int64_t{row} * columns + column) * std::int64_t{sizeof(std::int16_t)});
    const auto sample = bytes.Read<std::int16_t>();
    const double height = SampleScale{zResolution, zOffset}.HeightOf(sample);
    if (sample == kNoMeasurement || !std::isfinite(height))
        return {CellHeight::Kind::NotMeasured, 0.0};
    return {CellHeight::Kind::Measured, height};
}
