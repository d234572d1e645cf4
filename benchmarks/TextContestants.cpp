#include "TextContestants.h"

#include "PlainTextLoad.h"
#include "document/formats/Converter.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

struct Track {
    TrackInfo info;
    QImage image;
    std::vector<TrackPath> paths;

    Track() {
        info.minHeight = 32768.0;
        info.maxHeight = -32768.0;
    }
};

void Load(const std::string& file, Track& track) {
    const auto converter = CreateConverter(file);
    if (converter->ReadInfo(file, track.info) != 0 ||
        converter->ReadImage(file, track.info, track.info.minHeight, track.info.maxHeight, track.image) !=
            0 ||
        converter->ReadPath(file, track.paths) != 0)
        throw std::runtime_error("cannot load " + file);
}

Figures LoadText(const Arguments& arguments) {
    Track track;
    return {{"seconds", SecondsOf([&] { Load(arguments.at(0), track); })}};
}

Figures LoadTextPlainly(const Arguments& arguments) {
    Track track;
    return {{"seconds",
             SecondsOf([&] { PlainTextLoad(arguments.at(0), track.info, track.image, track.paths); })}};
}

Figures CompareTextLoads(const Arguments& arguments) {
    Track ours;
    Track plain;
    Load(arguments.at(0), ours);
    PlainTextLoad(arguments.at(0), plain.info, plain.image, plain.paths);
    double differences = ours.image.size() != plain.image.size() ? 1 : 0;
    for (int row = 0; differences == 0 && row < plain.image.height(); ++row)
        for (int column = 0; column < plain.image.width(); ++column)
            differences += ours.image.pixel(column, row) != plain.image.pixel(column, row) ? 1 : 0;
    differences += ours.info.columnPositions != plain.info.columnPositions ? 1 : 0;
    differences += ours.info.rowPositions != plain.info.rowPositions ? 1 : 0;
    differences += ours.paths.size() != plain.paths.size() ? 1 : 0;
    return {{"differences", differences}};
}

Figures ReadTextInfo(const Arguments& arguments) {
    Track track;
    return {{"seconds", SecondsOf([&] {
                 if (CreateConverter(arguments.at(0))->ReadInfo(arguments.at(0), track.info) != 0)
                     throw std::runtime_error("cannot read " + arguments.at(0));
             })}};
}

Figures FindCommas(const Arguments& arguments) {
    std::ifstream file(arguments.at(0), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    double commas = 0;
    const double seconds = SecondsOf([&] {
        const char* const end = bytes.data() + bytes.size();
        const char* at = bytes.data();
        while ((at = static_cast<const char*>(std::memchr(at, ',', static_cast<std::size_t>(end - at)))) !=
               nullptr) {
            ++at;
            ++commas;
        }
    });
    return {{"seconds", seconds}, {"commas", commas}};
}

Figures TextMemory(const Arguments& arguments) {
    int count = 1;
    char name[] = "corvane-bench";
    char* names[] = {name, nullptr};
    const QGuiApplication application(count, names);
    static_cast<void>(QPixmap::fromImage(QImage(8, 8, QImage::Format_RGB888)));
    const MemoryWatch memory;
    Track track;
    Load(arguments.at(0), track);
    const QPixmap pixmap = QPixmap::fromImage(track.image);
    const double pixels = static_cast<double>(pixmap.width()) * pixmap.height();
    const double kept = static_cast<double>(track.image.sizeInBytes()) + pixels * pixmap.depth() / 8.0;
    return {{"bytes", memory.PeakBytes() - kept}, {"kept", kept}};
}

} // namespace

Contestants TextContestants() {
    return {
        {"text-load", LoadText},     {"text-load-plain", LoadTextPlainly}, {"text-compare", CompareTextLoads},
        {"text-info", ReadTextInfo}, {"text-commas", FindCommas},          {"text-memory", TextMemory}};
}
