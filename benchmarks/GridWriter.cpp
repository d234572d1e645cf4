#include "GridWriter.h"

#include "document/formats/Converter.h"

#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

constexpr unsigned kSeed = 20'240'611;
constexpr const char* kNoCell = "";

/// The cells of a map in reading order: a wavy surface with noise and holes.
class Cells {
  public:
    explicit Cells(int width) : width(width) {}

    /// The next height in hundredths, or false for a hole.
    bool Next(int& hundredths) {
        const int column = at % width;
        const int row = at / width;
        ++at;
        const double surface = 900.0 * std::sin(column * 0.011) + 600.0 * std::cos(row * 0.007);
        hundredths = static_cast<int>(surface) + static_cast<int>(random() % 2000U);
        return random() % 20U != 0;
    }

  private:
    int width;
    int at = 0;
    std::mt19937 random{kSeed};
};

std::string Text(int hundredths) {
    const int size = std::abs(hundredths);
    std::string text = hundredths < 0 ? "-" : "";
    text += std::to_string(size / 100);
    text += '.';
    text += static_cast<char>('0' + size / 10 % 10);
    text += static_cast<char>('0' + size % 10);
    return text;
}

/// Rows of the cells, those without a height as `hole`; `head` starts each row.
void WriteRows(std::ostream& out, int width, int height, char separator, const std::string& hole,
               const std::function<std::string(int)>& head) {
    Cells cells(width);
    for (int row = 0; row < height; ++row) {
        std::string line = head(row);
        for (int column = 0; column < width; ++column) {
            int hundredths = 0;
            const bool measured = cells.Next(hundredths);
            if (!line.empty())
                line += separator;
            line += measured ? Text(hundredths) : hole;
        }
        out << line << '\n';
    }
}

std::string RowPosition(int row) {
    return Text(row * 10);
}

void WriteTrack(const std::string& file, int width, int height) {
    std::ofstream out(file, std::ios::binary);
    out << "Info\nXResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
        << "0.1,0.1,0.01,0,0,0," << width << ',' << height << "\nYX";
    for (int column = 0; column < width; ++column)
        out << ',' << Text(column * 10);
    out << '\n';
    WriteRows(out, width, height, ',', kNoCell, RowPosition);
    out << "End\nAnchor\nX,Y,Angle\n0,0,0\nEnd\nRuler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\nEnd\n"
        << "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
        << "0,0,12.5,3.2,0.25,0.4,1,100,50,100\n0,1,20.5,3.2,0.65,0.4,1,100,50,100\nEnd\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}

void WriteGrid(const std::string& file, int width, int height, const std::string& hole) {
    std::ofstream out(file, std::ios::binary);
    WriteRows(out, width, height, ',', hole, RowPosition);
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}

void WriteAsciiGrid(const std::string& file, int width, int height) {
    std::ofstream out(file, std::ios::binary);
    out << "ncols " << width << "\nnrows " << height
        << "\nxllcorner 0.0\nyllcorner 0.0\ncellsize 0.1\nNODATA_value -9999\n";
    WriteRows(out, width, height, ' ', "-9999", [](int) { return std::string(); });
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}

Figures MakeGrid(const Arguments& arguments) {
    const std::string& folder = arguments.at(0);
    const int width = NumberAt(arguments, 1);
    const int height = NumberAt(arguments, 2);
    WriteTrack(folder + "/track.trk", width, height);
    WriteGrid(folder + "/grid.csv", width, height, kNoCell);
    WriteGrid(folder + "/grid-nan.csv", width, height, "nan");
    WriteAsciiGrid(folder + "/grid.asc", width, height);
    return {{"cells", static_cast<double>(width) * height}};
}

Figures MakeText(const Arguments& arguments) {
    const int width = NumberAt(arguments, 1);
    const int height = NumberAt(arguments, 2);
    WriteTrack(arguments.at(0), width, height);
    return {{"cells", static_cast<double>(width) * height}};
}

Figures MakeBinary(const Arguments& arguments) {
    TrackInfo info;
    info.xResolution = info.yResolution = 0.1;
    info.zResolution = 0.01;
    info.width = NumberAt(arguments, 1);
    info.height = NumberAt(arguments, 2);
    Cells cells(info.width);
    HeightMap heights(static_cast<std::size_t>(info.width) * static_cast<std::size_t>(info.height));
    for (std::int16_t& height : heights) {
        int hundredths = 0;
        height = cells.Next(hundredths) ? static_cast<std::int16_t>(hundredths) : kNoMeasurement;
    }
    const auto size = static_cast<std::int64_t>(heights.size());
    if (CreateBinaryConverter()->WriteTrack(arguments.at(0), info, heights, size, {}, 1, 0, 0, 1, 1) != 0)
        throw std::runtime_error("cannot write " + arguments.at(0));
    return {{"cells", static_cast<double>(size)}};
}

} // namespace

Contestants GridWriters() {
    return {{"make-grid", MakeGrid}, {"make-text", MakeText}, {"make-binary", MakeBinary}};
}
