#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

/// What a contestant found out, by name: "seconds", "bytes" and the like.
using Figures = std::map<std::string, double>;

using Arguments = std::vector<std::string>;

/// One piece of work with a name. It throws what keeps it from being done.
using Contestant = std::function<Figures(const Arguments&)>;

using Contestants = std::map<std::string, Contestant>;

/// Argument `index` as a whole number.
[[nodiscard]] int NumberAt(const Arguments& arguments, std::size_t index);

/// The processor time of all threads of this process, in seconds: neighbours on the machine disturb it
/// little. It counts what the toolkit does in threads of its own, as it does for scaling.
[[nodiscard]] double ProcessSeconds();

/// Seconds on the wall.
[[nodiscard]] double WallSeconds();

/// The processor time that a piece of work takes.
[[nodiscard]] double SecondsOf(const std::function<void()>& work);

/// The middle of several values.
[[nodiscard]] double Median(std::vector<double> values);

/// How far the process's memory reaches beyond what it had when this was made.
class MemoryWatch {
  public:
    MemoryWatch();

    /// The most bytes beyond the start that were held at one time since.
    [[nodiscard]] double PeakBytes() const;

  private:
    double before;
};
