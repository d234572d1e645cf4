#include "tools/track/TrackPicture.h"

#include "canvas/PathPainter.h"
#include "raster/SmoothScaler.h"
#include "tools/track/SavePaths.h"

namespace {

QImage Scaled(const QImage& map, const QSize& size) {
    QImage picture(size, QImage::Format_RGB32);
    const SmoothScaler scaler(map.convertToFormat(QImage::Format_RGB32), size);
    scaler.Render(picture.rect(), picture, {0, 0});
    return picture;
}

void DrawPaths(const LoadedTrack& track, bool ruler, QImage& picture) {
    std::vector<TrackPath> paths = track.paths;
    if (ruler)
        ComputeRulerMarks(track.info, paths);
    EditingState state;
    state.currentPath = -1;
    PathExtents extents;
    ShapeCache shapes;
    PathPainter painter(picture, picture.rect(), 1.0, paths, state, extents, shapes,
                        CanvasScale(picture.size()));
    painter.Paint(ruler, {});
}

} // namespace

QImage DrawTrack(const LoadedTrack& track, const QSize& size, const PictureLayers& layers) {
    QImage picture = Scaled(LoadImage(track), size);
    if (layers.paths)
        DrawPaths(track, layers.ruler, picture);
    return picture;
}
