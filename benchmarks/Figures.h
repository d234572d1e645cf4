#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

/// The results of a contestant, by name: "seconds", "bytes" and the like.
using Figures = std::map<std::string, double>;

using Arguments = std::vector<std::string>;

/// A named contestant. @throws std::exception when the work fails
using Contestant = std::function<Figures(const Arguments&)>;

using Contestants = std::map<std::string, Contestant>;

/// Argument `index` as an integer.
[[nodiscard]] int NumberAt(const Arguments& arguments, std::size_t index);

/// The processor time of all threads of this process, in seconds: other load disturbs it little. It
/// includes Qt's own threads, which it uses for scaling.
[[nodiscard]] double ProcessSeconds();

/// Wall-clock time in seconds, from an arbitrary start.
[[nodiscard]] double ElapsedSeconds();

/// The processor time of some work, in seconds.
[[nodiscard]] double SecondsOf(const std::function<void()>& work);

/// The median.
[[nodiscard]] double Median(std::vector<double> values);

/// The memory of the process beyond that at the construction of the object.
class MemoryWatch {
  public:
    MemoryWatch();

    /// The peak since then, in bytes.
    [[nodiscard]] double PeakBytes() const;

  private:
    double before;
};
