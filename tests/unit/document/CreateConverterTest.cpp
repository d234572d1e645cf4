#include "ConvertBIN.h"
#include "ConvertCSV.h"
#include "Converter.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <gmock/gmock.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;

bool IsText(const std::shared_ptr<Converter>& converter) {
    return dynamic_cast<ConvertCSV*>(converter.get()) != nullptr;
}

bool IsBinary(const std::shared_ptr<Converter>& converter) {
    return dynamic_cast<ConvertBIN*>(converter.get()) != nullptr;
}

class CreateConverterTest : public testing::Test {
  protected:
    std::shared_ptr<Converter> CreatedFor(const std::string& content) {
        WriteFile("a.trk", content);
        return CreateConverter("a.trk");
    }

    TemporaryFolder folder;
    LogCapture log;
};

TEST_F(CreateConverterTest, takesTextForAnEmptyFile) {
    EXPECT_TRUE(IsText(CreatedFor("")));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertCSV."));
}

TEST_F(CreateConverterTest, takesTextForAFirstLineOfThreeBytes) {
    EXPECT_TRUE(IsText(CreatedFor("Tra\nTrack")));
    EXPECT_TRUE(IsText(CreatedFor("Tra")));
}

TEST_F(CreateConverterTest, takesBinaryForTheWordInsideALongerOne) {
    EXPECT_TRUE(IsBinary(CreatedFor("xxTracyy\nInfo\n")));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertBIN."));
}

TEST_F(CreateConverterTest, takesBinaryForTheFourBytesAlone) {
    EXPECT_TRUE(IsBinary(CreatedFor("Trac")));
}

TEST_F(CreateConverterTest, looksAtTheFirstLineOnly) {
    EXPECT_TRUE(IsText(CreatedFor("Info\nTrack")));
    EXPECT_TRUE(IsText(CreatedFor("Tr\nac")));
    for (const std::size_t before : {0U, 4090U, 4091U, 4092U, 4095U, 4096U, 10'000U, 1'000'000U}) {
        EXPECT_TRUE(IsText(CreatedFor("Info\n" + std::string(before, 'x') + "Track"))) << before;
        EXPECT_TRUE(IsText(CreatedFor(std::string(before, 'x') + "Tra\nc"))) << before;
        EXPECT_TRUE(IsText(CreatedFor(std::string(before, 'x') + "\nTrac"))) << before;
    }
}

TEST_F(CreateConverterTest, looksAtNoExtension) {
    WriteFile("a.txt", std::string("Track  \0\1\0\0\0", 12));
    EXPECT_TRUE(IsBinary(CreateConverter("a.txt")));
}

TEST_F(CreateConverterTest, looksAtRawBytes) {
    EXPECT_TRUE(IsBinary(CreatedFor(std::string("\0\"\\Trac", 7))));
    EXPECT_TRUE(IsText(CreatedFor("TRAC")));
}

TEST_F(CreateConverterTest, findsTheWordAnywhereInALongLine) {
    for (const std::size_t before : {4093U, 4094U, 4095U, 4096U, 4097U, 1'000'000U})
        EXPECT_TRUE(IsBinary(CreatedFor(std::string(before, 'x') + "Trac"))) << before;
    EXPECT_TRUE(IsText(CreatedFor(TenMegabytes('x'))));
}

TEST_F(CreateConverterTest, takesTextAndSaysSoForAFileThatIsNotThere) {
    EXPECT_TRUE(IsText(CreateConverter("no such \"file\" %s ü.trk")));
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (no such \"file\" %s ü.trk)"));
}

TEST_F(CreateConverterTest, takesAFolderForAFileThatIsNotThere) {
    std::filesystem::create_directory("folder");
    EXPECT_TRUE(IsText(CreateConverter("folder")));
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (folder)"));
}

TEST_F(CreateConverterTest, doesNotWaitForTheOtherEndOfAPipe) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_TRUE(IsText(CreateConverter("pipe")));
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (pipe)"));
}

TEST_F(CreateConverterTest, makesABinaryConverterWithoutAFile) {
    EXPECT_TRUE(IsBinary(CreateBinaryConverter()));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertBIN."));
}

TEST_F(CreateConverterTest, findsTheRealTracksEncodings) {
    EXPECT_TRUE(IsText(CreateConverter(TestData("fault.trk"))));
    EXPECT_TRUE(IsBinary(CreateConverter(TestData("fault-binary.trk"))));
}

TEST_F(CreateConverterTest, neverWritesAWholeTextTrack) {
    WriteFile("a.trk", "before");
    EXPECT_EQ(CreateConverter("none")->WriteTrack("a.trk", {}, {}, 0, {}, 1, 0, 0, 1, 1), -1);
    EXPECT_EQ(FileContent("a.trk"), "before");
}

} // namespace
