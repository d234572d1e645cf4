#pragma once

#include <cstddef>
#include <random>
#include <vector>

/// Random choices from a seed; the same seed gives the same choices.
class RandomChoice {
  public:
    void seed(unsigned value) { random.seed(value); }
    /// A number from 0 to `count` - 1.
    int pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    bool chance(int oneIn) { return pick(oneIn) == 0; }
    template<typename Item>
    const Item& oneOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(pick(static_cast<int>(items.size())))];
    }

  private:
    std::mt19937 random;
};
