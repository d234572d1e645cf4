#include "document/formats/TrackEncoding.h"

#include "basalt/InputFile.h"

#include <algorithm>
#include <string_view>

namespace {

/// Whether the first line holds the word that binary files begin with. The line is searched as it is read, in
/// pieces that overlap by the word's length, since a file without a line feed may be one endless line.
/// @return none when it cannot be read
std::optional<bool> FirstLineIsBinary(InputFile& file) {
    constexpr std::string_view kWord = "Trac";
    constexpr std::size_t kPiece = 4096;
    std::string seen;
    char piece[kPiece];
    std::size_t count = 0;
    while (file.Read(piece, kPiece, &count)) {
        if (count == 0)
            return false;
        const std::string_view bytes(piece, count);
        const std::size_t lineFeed = bytes.find('\n');
        seen.append(bytes.substr(0, lineFeed));
        if (seen.find(kWord) != std::string::npos)
            return true;
        if (lineFeed != std::string_view::npos)
            return false;
        seen.erase(0, seen.size() - std::min(seen.size(), kWord.size() - 1));
    }
    return std::nullopt;
}

} // namespace

std::optional<TrackEncoding> EncodingOf(const std::string& path) {
    InputFile file(path.c_str());
    const std::optional<bool> isBinary = file.IsOpen() ? FirstLineIsBinary(file) : std::nullopt;
    if (!isBinary)
        return std::nullopt;
    return *isBinary ? TrackEncoding::Binary : TrackEncoding::Text;
}
