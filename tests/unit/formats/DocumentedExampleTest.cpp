#include "document/formats/Converter.h"

#include "DocumentSamples.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// The lines of docs/track-files.md that are indented as examples, from the one that begins with `first` to
/// the next line that is neither indented nor empty.
std::vector<std::string> Example(const std::string& first) {
    std::istringstream document(FileContent(TestData("../../docs/track-files.md")));
    std::vector<std::string> lines;
    for (std::string line; std::getline(document, line);) {
        const bool indented = line.rfind("    ", 0) == 0;
        if (lines.empty() ? line.rfind("    " + first, 0) == 0 : indented || line.empty())
            lines.push_back(indented ? line.substr(4) : line);
        else if (!lines.empty())
            break;
    }
    return lines;
}

/// The bytes of the dump: after each line's offset pairs of digits, up to two blanks.
std::string BinaryExample() {
    std::string bytes;
    for (const std::string& line : Example("0000  ")) {
        if (line.empty())
            continue;
        const std::string pairs = line.substr(6, line.find("  ", 6) - 6);
        for (std::size_t i = 0; i < pairs.size(); i += 3)
            bytes += static_cast<char>(std::stoi(pairs.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

std::string TextExample() {
    std::string text;
    for (const std::string& line : Example("Info"))
        text += line + "\n";
    return text;
}

TEST(DocumentedExample, isTheSameTrackInBothEncodings) {
    const independent::Track binary = independent::ReadBinary(BinaryExample());
    const independent::Track text = independent::ReadText(TextExample());
    EXPECT_EQ(binary.rulers, text.rulers);
    EXPECT_EQ(binary.segments, text.segments);
    EXPECT_EQ(binary.anchor, text.anchor);
    ASSERT_EQ(binary.cells.size(), 6U);
    ASSERT_EQ(text.heights.size(), 6U);
    for (std::size_t i = 0; i < binary.cells.size(); ++i) {
        const bool measured = binary.cells[i] != independent::kNoMeasurement;
        EXPECT_EQ(text.heights[i], measured ? std::optional(binary.cells[i] * 0.125 + 600) : std::nullopt);
    }
}

TEST(DocumentedExample, isReadByTheConvertersInBothEncodings) {
    const TemporaryFolder folder;
    WriteFile("binary.trk", BinaryExample());
    WriteFile("text.trk", TextExample());
    for (const char* name : {"binary.trk", "text.trk"}) {
        TrackInfo info;
        info.minHeight = 32768;
        info.maxHeight = -32768;
        std::vector<TrackPath> paths;
        EXPECT_EQ(CreateConverter(name)->ReadInfo(name, info), 0);
        EXPECT_EQ(info.minHeight, 599);
        EXPECT_EQ(info.maxHeight, 603);
        EXPECT_EQ(CreateConverter(name)->ReadPath(name, paths), 0);
        ASSERT_EQ(paths.size(), 1U);
        EXPECT_EQ(paths[0].points.size(), 2U);
    }
}

} // namespace
