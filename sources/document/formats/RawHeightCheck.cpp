#include "document/formats/RawHeightCheck.h"

#include <array>
#include <charconv>

namespace {

/// The shortest text that reads back as the number.
std::string TextOf(double number) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string NameOf(const RawHeightCheck::Cell& cell) {
    return "row=" + std::to_string(cell.row) + " column=" + std::to_string(cell.column) +
           " height=" + TextOf(cell.height);
}

} // namespace

RawHeightCheck::RawHeightCheck(double offset, double resolution)
    : zOffset(offset),
      zResolution(resolution),
      hasRawValues(resolution != 0.0 && std::isfinite(resolution) && std::isfinite(offset)) {
}

void RawHeightCheck::Note(const Cell& cell, std::int16_t raw) {
    if (!std::isfinite(cell.height))
        return;
    if (!withoutRawValue && !HasRawValue(cell.height))
        withoutRawValue = cell;
    Compare(cell, raw);
}

void RawHeightCheck::Compare(const Cell& cell, std::int16_t raw) {
    if (!first) {
        first = cell;
        firstRaw = raw;
        return;
    }
    rawValuesDiffer = rawValuesDiffer || raw != firstRaw;
    if (!different && cell.height != first->height)
        different = cell;
}

std::string RawHeightCheck::Failure() const {
    if (withoutRawValue) {
        const std::string reason =
            hasRawValues ? "its raw value " + TextOf((withoutRawValue->height - zOffset) / zResolution) +
                               " is beyond 16 bits"
                         : "ZResolution=" + TextOf(zResolution) + " and ZOffset=" + TextOf(zOffset) +
                               " give it no raw value";
        return "Cannot store " + NameOf(*withoutRawValue) + ": " + reason;
    }
    if (different && !rawValuesDiffer)
        return "Cannot store " + NameOf(*different) + ": with ZResolution=" + TextOf(zResolution) +
               " all heights become the raw value " + std::to_string(firstRaw);
    return {};
}
