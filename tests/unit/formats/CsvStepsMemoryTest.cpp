#include "document/formats/ConvertCSV.h"
#include "document/formats/HeightColours.h"
#include "document/formats/TrackInfo.h"

#include "LogCapture.h"

#include <QImage>

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

bool nextAllocationFails = false;

} // namespace

// Replaces the library's: the first allocation after the flag is set gets no memory. Not inlined, as a
// compiler that inlines only one of a pair reports memory from `new` that is given to `free`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (std::exchange(nextAllocationFails, false))
        throw std::bad_alloc();
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using testing::ElementsAre;

// A number that the C library reads from a copy, which is too long to need no allocation.
const std::string kLongNumber = "+1.00000000000000000000";

class CsvStepsMemory : public testing::Test {
  protected:
    void ExpectFailure(const std::string& content, const std::string& expected,
                       const std::function<int(const CsvLine&)>& step) {
        CsvLine line;
        line.Split(content);
        EXPECT_EQ(step(line), 0);
        nextAllocationFails = true;
        EXPECT_EQ(step(line), 1);
        EXPECT_FALSE(nextAllocationFails);
        EXPECT_THAT(log.Lines(), ElementsAre(expected + "std::bad_alloc"));
    }

    LogCapture log;
};

TEST_F(CsvStepsMemory, failureIsReportedInTheInfoLine) {
    TrackInfo info;
    ExpectFailure(kLongNumber + ",1,1,0,0,0,2,1", "ERROR: [ExtractInfo] (EXCEPTION) ",
                  [&](const CsvLine& line) { return ExtractInfo(line, info); });
}

TEST_F(CsvStepsMemory, failureIsReportedInTheHeightMapsHeader) {
    ExpectFailure("YX,1,2", "ERROR: [ExtractYValues] (EXCEPTION) ", [](const CsvLine& line) {
        std::vector<double> positions;
        return ExtractYValues(line, 2, positions);
    });
}

TEST_F(CsvStepsMemory, failureIsReportedInARowForTheRange) {
    std::vector<double> positions(1);
    double low = 0.0;
    double high = 0.0;
    ExpectFailure("0," + kLongNumber, "ERROR: [FindMinMaxHeight] (EXCEPTION) ",
                  [&](const CsvLine& line) { return FindMinMaxHeight(line, 0, positions, low, high); });
}

TEST_F(CsvStepsMemory, failureIsReportedInARowForTheImage) {
    HeightColours colours{HeightRamp(0, 1)};
    QImage image(1, 1, QImage::Format_RGB888);
    ExpectFailure("0," + kLongNumber, "ERROR: [ExtractRowPixelValues] (EXCEPTION) ",
                  [&](const CsvLine& line) { return ExtractRowPixelValues(line, 0, colours, image); });
}

TEST_F(CsvStepsMemory, failureIsReportedInARowForTheRawMap) {
    HeightMap heights(1);
    ExpectFailure("0," + kLongNumber, "ERROR: [ExtractRowPixelData] (EXCEPTION) ",
                  [&](const CsvLine& line) { return ExtractRowPixelData(line, 0, 1, 0.0, 1.0, heights); });
}

} // namespace
