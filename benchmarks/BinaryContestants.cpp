#include "BinaryContestants.h"

#include "document/formats/Converter.h"
#include "document/formats/HeightColours.h"

#include <QImage>

#include <cmath>
#include <cstring>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t kPixelSize = 3;

Figures LoadBinary(const Arguments& arguments) {
    const std::string& file = arguments.at(0);
    TrackInfo info;
    QImage image;
    return {{"seconds", SecondsOf([&] {
                 const auto converter = CreateConverter(file);
                 if (converter->ReadInfo(file, info) != 0 ||
                     converter->ReadImage(file, info, info.minHeight, info.maxHeight, image) != 0)
                     throw std::runtime_error("cannot load " + file);
             })}};
}

Figures ReadAndClear(const Arguments& arguments) {
    return {{"seconds", SecondsOf([&] {
                 constexpr std::size_t kBlock = std::size_t{1} << 20U;
                 std::vector<char> block(kBlock);
                 std::ifstream file;
                 file.rdbuf()->pubsetbuf(nullptr, 0);
                 file.open(arguments.at(0), std::ios::binary);
                 while (file.read(block.data(), kBlock) || file.gcount() > 0)
                     continue;
                 QImage image(NumberAt(arguments, 1), NumberAt(arguments, 2), QImage::Format_RGB888);
                 image.fill(0);
             })}};
}

/// A direct implementation of the formula: black below and without measurement, then seven bands, then white.
std::uint32_t ColourByFormula(int sample, double low, double high) {
    const double v = std::floor((sample * 0.01 + 3.0 - low) * 1792 / (high - low) + 0.5);
    if (sample == -32768 || v < 0)
        return 0;
    if (v >= 1792)
        return 0xffffff;
    const unsigned b = static_cast<unsigned>(v) % 256U;
    const unsigned bands[7][3] = {{0, 0, b},         {0, b, 255}, {0, 255, 255 - b}, {b, 255, 0},
                                  {255, 255 - b, 0}, {255, 0, b}, {255, b, 255}};
    const unsigned* colour = bands[static_cast<unsigned>(v) / 256U];
    return colour[0] | colour[1] << 8U | colour[2] << 16U;
}

double RampDifferences(const SampleRamp& ramp, double low, double high) {
    double differences = 0;
    for (int sample = -32768; sample <= 32767; ++sample) {
        const auto narrow = static_cast<std::int16_t>(sample);
        std::uint32_t pixel = 0;
        ramp.Paint({&narrow, 1}, reinterpret_cast<std::uint8_t*>(&pixel));
        differences += pixel != ColourByFormula(sample, low, high) ? 1 : 0;
    }
    return differences;
}

std::size_t CellCount(const Arguments& arguments) {
    const auto side = static_cast<std::size_t>(NumberAt(arguments, 0));
    return side * side;
}

Figures PaintRamp(const Arguments& arguments) {
    const double low = -100.0;
    const double high = 150.0;
    std::vector<std::int16_t> samples(CellCount(arguments));
    std::mt19937 random(4);
    int height = 0;
    for (std::int16_t& sample : samples) {
        height += static_cast<int>(random() % 401U) -
                  200; // rough like a measured surface, over the full colour ramp
        height = std::abs(height) > 15'000 ? 0 : height;
        sample = static_cast<std::int16_t>(height);
    }
    std::vector<std::uint8_t> target(samples.size() * kPixelSize);
    const SampleRamp ramp(HeightRamp(low, high), {0.01, 3.0});
    const double seconds = SecondsOf([&] { ramp.Paint(samples, target.data()); });
    return {{"seconds", seconds}, {"differences", RampDifferences(ramp, low, high)}};
}

Figures CopyPixels(const Arguments& arguments) {
    const std::vector<std::uint8_t> source(CellCount(arguments) * kPixelSize, 7);
    std::vector<std::uint8_t> target(source.size());
    return {{"seconds", SecondsOf([&] { std::memcpy(target.data(), source.data(), source.size()); })},
            {"last", static_cast<double>(target.back())}};
}

} // namespace

Contestants BinaryContestants() {
    return {{"binary-load", LoadBinary},
            {"binary-limit", ReadAndClear},
            {"ramp", PaintRamp},
            {"ramp-copy", CopyPixels}};
}
