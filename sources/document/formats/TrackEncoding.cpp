#include "document/formats/TrackEncoding.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace {

/// Whether the first line holds the word that binary files begin with. The line is searched as it is read, in
/// pieces that overlap by the word's length, since a file without a line feed may be one endless line.
bool FirstLineIsBinary(std::istream& file) {
    constexpr std::string_view kWord = "Trac";
    constexpr std::size_t kPiece = 4096;
    std::string seen;
    char piece[kPiece];
    while (file.read(piece, kPiece), file.gcount() > 0) {
        const std::string_view bytes(piece, static_cast<std::size_t>(file.gcount()));
        const std::size_t lineFeed = bytes.find('\n');
        seen.append(bytes.substr(0, lineFeed));
        if (seen.find(kWord) != std::string::npos)
            return true;
        if (lineFeed != std::string_view::npos)
            return false;
        seen.erase(0, seen.size() - std::min(seen.size(), kWord.size() - 1));
    }
    return false;
}

} // namespace

std::optional<TrackEncoding> EncodingOf(const std::string& path) {
    std::error_code error;
    std::ifstream file;
    if (std::filesystem::is_regular_file(path, error)) // a folder opens too, and a pipe would keep us waiting
        file.open(path, std::ios::binary);
    if (!file.is_open())
        return std::nullopt;
    return FirstLineIsBinary(file) ? TrackEncoding::Binary : TrackEncoding::Text;
}
