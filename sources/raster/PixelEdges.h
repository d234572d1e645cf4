#pragma once

/// Which pixels an edge leaves to either side: pixel i has its centre at i + 0.5, and a centre right on the
/// edge belongs to the shape on its left, or above it. Edges must be within the range of int.
namespace PixelEdges {

/// The largest whole number up to a value; a call less than the library's.
[[nodiscard]] inline int Floor(double value) {
    const int whole = static_cast<int>(value);
    return whole - (value < whole ? 1 : 0);
}

[[nodiscard]] inline int FirstBehind(double edge) {
    return Floor(edge + 0.5);
}

[[nodiscard]] inline int LastUpTo(double edge) {
    return Floor(edge - 0.5);
}

} // namespace PixelEdges
