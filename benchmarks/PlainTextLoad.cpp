#include "PlainTextLoad.h"

#include <boost/tokenizer.hpp>

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {

using Fields = std::vector<std::string>;

Fields Split(const std::string& line) {
    const boost::tokenizer<boost::escaped_list_separator<char>> tokens(line);
    return {tokens.begin(), tokens.end()};
}

/// The next line that is not empty, split.
bool Next(std::ifstream& file, Fields& fields) {
    std::string line;
    while (std::getline(file, line))
        if (!line.empty()) {
            fields = Split(line);
            return true;
        }
    return false;
}

bool Holds(const Fields& fields, const char* keyword) {
    return !fields.empty() && fields[0].find(keyword) != std::string::npos;
}

// NOLINTBEGIN(cert-err34-c): the simple way does not check
double Number(const std::string& field) {
    return std::atof(field.c_str());
}

int Integer(const std::string& field) {
    return std::atoi(field.c_str());
}
// NOLINTEND(cert-err34-c)

void TakeInfo(const Fields& fields, TrackInfo& info) {
    info.xResolution = Number(fields.at(0));
    info.yResolution = Number(fields.at(1));
    info.zResolution = Number(fields.at(2));
    info.xOffset = Number(fields.at(3));
    info.yOffset = Number(fields.at(4));
    info.zOffset = Number(fields.at(5));
    info.width = Integer(fields.at(6));
    info.height = Integer(fields.at(7));
}

void WidenRange(const Fields& fields, TrackInfo& info) {
    info.rowPositions.push_back(Number(fields.at(0)));
    for (std::size_t i = 1; i < fields.size(); ++i) {
        if (fields[i].empty())
            continue;
        const double height = Number(fields[i]);
        if (height > info.maxHeight)
            info.maxHeight = height;
        if (height < info.minHeight)
            info.minHeight = height;
    }
}

void ReadInfo(const std::string& path, TrackInfo& info) {
    std::ifstream file(path);
    Fields fields;
    while (Next(file, fields)) {
        if (Holds(fields, "Info") && Next(file, fields) && Next(file, fields))
            TakeInfo(fields, info);
        if (!Holds(fields, "YX"))
            continue;
        for (std::size_t i = 1; i < fields.size(); ++i)
            info.columnPositions.push_back(Number(fields[i]));
        while (Next(file, fields) && !Holds(fields, "End"))
            WidenRange(fields, info);
    }
}

QRgb Colour(int v) {
    const int b = v % 256;
    if (v < 0)
        return qRgb(0, 0, 0);
    if (v < 256)
        return qRgb(0, 0, b);
    if (v < 512)
        return qRgb(0, b, 255);
    if (v < 768)
        return qRgb(0, 255, 255 - b);
    if (v < 1024)
        return qRgb(b, 255, 0);
    if (v < 1280)
        return qRgb(255, 255 - b, 0);
    if (v < 1536)
        return qRgb(255, 0, b);
    if (v < 1792)
        return qRgb(255, b, 255);
    return qRgb(255, 255, 255);
}

void PaintRow(const Fields& fields, const TrackInfo& info, int row, QImage& image) {
    const double range = info.maxHeight - info.minHeight;
    for (int column = 0; column < info.width; ++column) {
        const std::string& field = fields.at(static_cast<std::size_t>(column) + 1);
        if (field.empty()) {
            image.setPixel(column, row, qRgb(0, 0, 0));
            continue;
        }
        const double step = (Number(field) - info.minHeight) * 1792 / range;
        image.setPixel(column, row, Colour(static_cast<int>(std::floor(step + 0.5))));
    }
}

void ReadImage(const std::string& path, const TrackInfo& info, QImage& image) {
    std::ifstream file(path);
    image = QImage(info.width, info.height, QImage::Format_RGB888);
    Fields fields;
    while (Next(file, fields) && !Holds(fields, "YX"))
        continue;
    for (int row = 0; Next(file, fields) && !Holds(fields, "End"); ++row)
        PaintRow(fields, info, row, image);
}

void ReadPath(const std::string& path, std::vector<TrackPath>& paths) {
    std::ifstream file(path);
    Fields fields;
    while (Next(file, fields) && !Holds(fields, "Segment"))
        continue;
    Next(file, fields);
    while (Next(file, fields) && !Holds(fields, "End")) {
        if (Integer(fields.at(0)) == static_cast<int>(paths.size()))
            paths.emplace_back();
        TrackPath& last = paths.back();
        last.points.emplace_back(Number(fields.at(4)), Number(fields.at(5)));
        last.methods.push_back(Integer(fields.at(6)));
        last.lengths.push_back(Integer(fields.at(7)));
        last.widths.push_back(Integer(fields.at(8)));
        last.spaces.push_back(Integer(fields.at(9)));
    }
}

} // namespace

void PlainTextLoad(const std::string& path, TrackInfo& info, QImage& image, std::vector<TrackPath>& paths) {
    ReadInfo(path, info);
    ReadImage(path, info, image);
    ReadPath(path, paths);
}
