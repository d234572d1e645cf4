#include "tools/commands/Commands.h"

#include "document/TrackGeometry.h"
#include "tools/commandline/Output.h"
#include "tools/track/SavePaths.h"
#include "tools/track/TrackPicture.h"

#include <algorithm>

namespace {

constexpr int kMaxPictureSide = 32767;
constexpr std::int64_t kMaxPixels = std::int64_t{1} << 27; ///< half a gigabyte

QSize ScaledSize(const TrackInfo& info, double scale) {
    return ShownImageSize({info.width, info.height}, info.xResolution, info.yResolution, scale);
}

/// The largest size with the track's proportions that fits into a frame.
QSize FittingSize(const TrackInfo& info, const QSize& frame) {
    const QSize full = ShownSizeOf(info);
    const double scale = std::min(static_cast<double>(frame.width()) / full.width(),
                                  static_cast<double>(frame.height()) / full.height());
    return ScaledSize(info, scale).boundedTo(frame); // rounding may add a pixel
}

QSize PictureSize(const TrackInfo& info, const Arguments& arguments) {
    const std::optional<double> percent = arguments.Number("scale", 0.1, 10'000);
    const std::optional<QSize> frame = arguments.Size("size", kMaxPictureSide);
    if (percent && frame)
        throw Failure(ExitCode::Misused, "--scale and --size cannot be combined");
    const QSize size = frame ? FittingSize(info, *frame) : ScaledSize(info, percent.value_or(100) / 100);
    if (size.width() > kMaxPictureSide || size.height() > kMaxPictureSide ||
        std::int64_t{size.width()} * size.height() > kMaxPixels)
        throw Failure(ExitCode::Misused, "a picture of " + std::to_string(size.width()) + " x " +
                                             std::to_string(size.height()) +
                                             " pixels is too large: choose a smaller --scale or a --size");
    return size;
}

} // namespace

CommandText RenderCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("render");
    text.summary = QStringLiteral("Draw a track as the editor shows it, as a PNG picture");
    text.arguments = QStringLiteral("TRACK PICTURE");
    text.min = text.max = 2;
    text.details = QStringLiteral(
        "Shows the height map in colours, stretched along one axis where its resolutions differ, and\n"
        "over it the paths and the bands of the ruler.\n");
    text.options = {{QStringLiteral("scale"),
                     QStringLiteral("PERCENT"),
                     QStringLiteral("100 (default) shows one pixel for each cell along the finer axis"),
                     {}},
                    {QStringLiteral("size"),
                     QStringLiteral("WxH"),
                     QStringLiteral("the largest picture that fits into W x H pixels"),
                     {}},
                    Switch(QStringLiteral("no-paths"), QStringLiteral("show the height map alone")),
                    Switch(QStringLiteral("no-ruler"), QStringLiteral("show the paths without the ruler"))};
    return text;
}

ExitCode RenderCommand::Run(const Arguments& arguments) const {
    const LoadedTrack track = LoadTrack(arguments.Words()[0]);
    const PictureLayers layers{!arguments.Has("no-paths"), !arguments.Has("no-ruler")};
    WritePicture(DrawTrack(track, PictureSize(track.info, arguments), layers), arguments.Words()[1]);
    return ExitCode::Done;
}
