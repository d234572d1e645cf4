#include "PathLayouts.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

/// Reflects a place at the borders of the unit length.
double Inside(double place) {
    return 1.0 - std::abs(1.0 - std::abs(place));
}

} // namespace

void WritePathFile(const std::string& file, int paths, int points, const QRectF& area, double step) {
    std::ofstream out(file, std::ios::binary);
    out.precision(17);
    out << "Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n";
    std::mt19937 random(12);
    std::uniform_real_distribution<double> delta(-step, step);
    const int across = std::max(1, static_cast<int>(std::lround(std::sqrt(paths))));
    const int down = (paths + across - 1) / across;
    for (int path = 0; path < paths; ++path) {
        const int column = path % across;
        const int row = path / across;
        double x = (column + 0.5) / across;
        double y = (row + 0.5) / down;
        for (int point = 0; point < points; ++point) {
            out << path << ',' << point << ",0,0," << area.left() + x * area.width() << ','
                << area.top() + y * area.height() << ",1,20,10,20\n";
            x = Inside(x + delta(random));
            y = Inside(y + delta(random) * area.width() / area.height());
        }
    }
    out << "End\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}
