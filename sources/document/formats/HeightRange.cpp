#include "document/formats/HeightRange.h"

#include <cmath>

void HeightRange::Add(double height) {
    if (!std::isfinite(height))
        return;
    // Of a zero and a negative zero, the one that came first stays.
    if (height == 0.0)
        TakeInDigits();
    Widen(height);
}

double HeightRange::Lowest() {
    TakeInDigits();
    return lowest;
}

double HeightRange::Highest() {
    TakeInDigits();
    return highest;
}

void HeightRange::Widen(double height) {
    if (height < lowest)
        lowest = height;
    if (height > highest)
        highest = height;
}

void HeightRange::TakeInDigits() {
    for (std::uint32_t fraction = 0; fraction < digits.size(); ++fraction) {
        DigitRange& range = digits[fraction];
        if (range.lowest > range.highest)
            continue;
        Widen(PackedDecimal{range.lowest, fraction}.Value());
        Widen(PackedDecimal{range.highest, fraction}.Value());
        range = DigitRange();
    }
}
