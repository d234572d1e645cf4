#pragma once

#include <cstdint>
#include <vector>

/// A point of a path, in ten-thousandths of the part's width and height.
struct PathPoint {
    int x;
    int y;
};

using Path = std::vector<PathPoint>;

/// What a line sensor measures of a machined part on a table: a plate with rounded corners, bored holes, a
/// raised boss, and a groove or a welded seam. Steep walls, holes and the shadows of higher parts have no
/// measurement, and every measured height has noise.
///
/// The same arguments give the same heights on every machine: only additions, multiplications, divisions and
/// square roots are used, and our own random numbers.
class MachinedPart {
  public:
    enum class Kind { Groove, Seam };

    static constexpr std::int16_t kNoMeasurement = -32768;
    static constexpr int kMicrometresPerUnit = 10;
    static constexpr int kWidth = 100'000; ///< micrometres; the height follows from the rows

    MachinedPart(Kind kind, int columns, int rows, std::uint32_t seed);

    [[nodiscard]] int Columns() const { return columns; }
    [[nodiscard]] int Rows() const { return rows; }
    /// The distance of two columns, and of two rows, in micrometres.
    [[nodiscard]] int Pitch() const { return pitch; }

    /// The heights of one row above the middle of the measuring range, in units of 10 micrometres.
    [[nodiscard]] std::vector<std::int16_t> Row(int row) const;

    /// The paths that an operator would draw: one along the groove or seam, one across the boss.
    [[nodiscard]] std::vector<Path> Paths() const;

  private:
    [[nodiscard]] double SurfaceAt(double x, double y) const;
    [[nodiscard]] double PlateAt(double x, double y) const;
    [[nodiscard]] double FeatureAt(double x, double y) const;
    [[nodiscard]] bool InHole(double x, double y) const;
    [[nodiscard]] double DistanceFromLine(double x, double y) const;
    [[nodiscard]] double DistanceOutsidePlate(double x, double y) const;
    [[nodiscard]] std::vector<bool> Hidden(const std::vector<double>& surface) const;

    Kind kind;
    int columns;
    int rows;
    std::uint32_t seed;
    int pitch;
    double width; ///< millimetres, as the next two
    double height;
    double size; ///< the smaller of the two
    Path line;   ///< the middle of the groove or seam
};
