#include "Check.h"
#include "PathUpdate.h"
#include "TrackChecks.h"
#include "document/formats/ConvertBIN.h"

#include <cstring>
#include <stdexcept>

namespace {

constexpr std::size_t kHeaderSize = 68;

/// The header and the map of the original, as the target must begin.
std::string HeaderAndMapOf(const std::string& original) {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::memcpy(&width, original.data() + 60, sizeof width);
    std::memcpy(&height, original.data() + 64, sizeof height);
    return original.substr(0, kHeaderSize +
                                  2 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

void CheckTarget(const PathUpdate& update) {
    const std::string& original = update.original;
    const std::string& target = update.target;
    const std::vector<TrackPath>& paths = update.paths;
    Check(original.size() >= kHeaderSize && target.starts_with(HeaderAndMapOf(original)),
          "header and map are copied byte for byte");
    std::vector<TrackPath> read;
    Check(ConvertBIN().ReadPath("target.trk", read) == 0, "the paths can be read back");
    CheckSamePaths(read, paths);
    // The independent reader accepts complete files only: with the usual first bytes and an anchor.
    if (!target.starts_with("Track  ") || target[7] != '\0' || target[HeaderAndMapOf(original).size()] != 'A')
        return;
    try {
        CheckSameRecords(independent::ReadBinary(target).segments, paths);
    } catch (const std::runtime_error& failure) {
        Broken(std::string("what was written is well-formed: ") + failure.what());
    }
}

} // namespace

// Writes new paths into any bytes, read as a binary track.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ConvertBIN converter;
    const PathUpdate update = UpdateAnyPaths(converter, data, size);
    Check(update.result == 0 || update.result == 1, "a target that can be written is never the failure");
    if (update.result == 0)
        CheckTarget(update);
    return 0;
}
