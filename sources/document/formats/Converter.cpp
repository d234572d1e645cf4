#include "document/formats/Converter.h"

#include "basalt/InputFile.h"
#include "document/formats/ConvertBIN.h"
#include "document/formats/ConvertCSV.h"
#include "log/Log.h"

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

std::shared_ptr<Converter> CreateConverter(const std::string& path) {
    const std::optional<TrackEncoding> encoding = EncodingOf(path);
    if (!encoding) {
        LOG_LINE(ERROR) << "Could not find file (" << path << ")";
        return std::make_shared<ConvertCSV>();
    }
    if (*encoding == TrackEncoding::Binary)
        return CreateBinaryConverter();
    LOG_LINE(INFO) << "Creating ConvertCSV.";
    return std::make_shared<ConvertCSV>();
}

std::shared_ptr<Converter> CreateBinaryConverter() {
    LOG_LINE(INFO) << "Creating ConvertBIN.";
    return std::make_shared<ConvertBIN>();
}

std::optional<TrackEncoding> EncodingOf(const std::string& path) {
    InputFile file(path.c_str());
    const std::optional<bool> isBinary = file.IsOpen() ? FirstLineIsBinary(file) : std::nullopt;
    if (!isBinary)
        return std::nullopt;
    return *isBinary ? TrackEncoding::Binary : TrackEncoding::Text;
}

int CommitTarget(AtomicFile& file, const std::string& path) {
    if (file.Commit())
        return kWritten;
    LOG_LINE(ERROR) << "Could not write file (" << path << ")";
    return kTargetNotWritable;
}

void LogException(const char* tag, const char* text) noexcept {
    try {
        LOG_LINE(ERROR) << tag << text;
    } catch (...) { // NOLINT(bugprone-empty-catch): see the header
    }
}
