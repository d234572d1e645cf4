#include "document/formats/ConvertBIN.h"
#include "document/formats/ConvertCSV.h"
#include "document/formats/Converter.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "TextTrack.h"

#include <gmock/gmock.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <type_traits>

#include <sys/stat.h>

namespace {

using testing::ElementsAre;

/// The index of an operation in the interface's virtual table.
template<typename Operation>
std::ptrdiff_t SlotOf(Operation operation) {
    std::array<std::ptrdiff_t, 2> parts{}; // the operation's offset plus one, and the adjustment of `this`
    static_assert(sizeof operation == sizeof parts);
    std::memcpy(parts.data(), &operation, sizeof operation);
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

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

TEST_F(CreateConverterTest, choosesTextForAnEmptyFile) {
    EXPECT_TRUE(IsText(CreatedFor("")));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertCSV."));
}

TEST_F(CreateConverterTest, choosesTextForAFirstLineOfThreeBytes) {
    EXPECT_TRUE(IsText(CreatedFor("Tra\nTrack")));
    EXPECT_TRUE(IsText(CreatedFor("Tra")));
}

TEST_F(CreateConverterTest, choosesBinaryForTheWordInsideALongerOne) {
    EXPECT_TRUE(IsBinary(CreatedFor("xxTracyy\nInfo\n")));
    EXPECT_THAT(log.Lines(), ElementsAre("INFO: Creating ConvertBIN."));
}

TEST_F(CreateConverterTest, choosesBinaryForTheFourBytesAlone) {
    EXPECT_TRUE(IsBinary(CreatedFor("Trac")));
}

TEST_F(CreateConverterTest, readsOnlyTheFirstLine) {
    EXPECT_TRUE(IsText(CreatedFor("Info\nTrack")));
    EXPECT_TRUE(IsText(CreatedFor("Tr\nac")));
    for (const std::size_t before : {0U, 4090U, 4091U, 4092U, 4095U, 4096U, 10'000U, 1'000'000U}) {
        EXPECT_TRUE(IsText(CreatedFor("Info\n" + std::string(before, 'x') + "Track"))) << before;
        EXPECT_TRUE(IsText(CreatedFor(std::string(before, 'x') + "Tra\nc"))) << before;
        EXPECT_TRUE(IsText(CreatedFor(std::string(before, 'x') + "\nTrac"))) << before;
    }
}

TEST_F(CreateConverterTest, ignoresTheExtension) {
    WriteFile("a.txt", std::string("Track  \0\1\0\0\0", 12));
    EXPECT_TRUE(IsBinary(CreateConverter("a.txt")));
}

TEST_F(CreateConverterTest, comparesRawBytes) {
    EXPECT_TRUE(IsBinary(CreatedFor(std::string("\0\"\\Trac", 7))));
    EXPECT_TRUE(IsText(CreatedFor("TRAC")));
}

TEST_F(CreateConverterTest, findsTheWordAnywhereInALongLine) {
    for (const std::size_t before : {4093U, 4094U, 4095U, 4096U, 4097U, 1'000'000U})
        EXPECT_TRUE(IsBinary(CreatedFor(std::string(before, 'x') + "Trac"))) << before;
    EXPECT_TRUE(IsText(CreatedFor(TenMegabytes('x'))));
}

TEST_F(CreateConverterTest, choosesTextAndLogsItForAMissingFile) {
    EXPECT_TRUE(IsText(CreateConverter("no such \"file\" %s ü.trk")));
    EXPECT_THAT(log.Lines(), ElementsAre("ERROR: Could not find file (no such \"file\" %s ü.trk)"));
}

TEST_F(CreateConverterTest, treatsAFolderAsAMissingFile) {
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

TEST_F(CreateConverterTest, neverWritesACompleteTextTrack) {
    WriteFile("a.trk", "before");
    EXPECT_EQ(CreateConverter("none")->WriteTrack("a.trk", {}, {}, 0, {}, 1, 0, 0, 1, 1), -1);
    EXPECT_EQ(FileContent("a.trk"), "before");
}

TEST(EncodingOf, isUnknownForAFileThatCannotBeOpened) {
    const TemporaryFolder folder;
    LogCapture log;
    std::filesystem::create_directory("folder");
    EXPECT_EQ(EncodingOf("folder"), std::nullopt);
    EXPECT_EQ(EncodingOf("missing"), std::nullopt);
    EXPECT_EQ(EncodingOf(TestData("fault.trk")), TrackEncoding::Text);
    EXPECT_EQ(EncodingOf(TestData("fault-binary.trk")), TrackEncoding::Binary);
    EXPECT_THAT(log.Lines(), testing::IsEmpty());
}

TEST(ConverterInterface, hasNeitherDataNorAVirtualDestructor) {
    EXPECT_TRUE(std::is_abstract_v<Converter>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Converter>);
    EXPECT_EQ(sizeof(Converter), sizeof(void*));
    EXPECT_EQ(sizeof(ConvertCSV), sizeof(void*));
    EXPECT_EQ(sizeof(ConvertBIN), sizeof(void*));
}

TEST(ConverterInterface, hasItsOperationsInTheirOrder) {
#ifndef __x86_64__
    GTEST_SKIP() << "another layout of member pointers";
#endif
    EXPECT_EQ(SlotOf(&Converter::ReadInfo), 0);
    EXPECT_EQ(SlotOf(&Converter::ReadImage), 1);
    EXPECT_EQ(SlotOf(&Converter::ReadHeightMap), 2);
    EXPECT_EQ(SlotOf(&Converter::ReadPath), 3);
    EXPECT_EQ(SlotOf(&Converter::WriteTrack), 4);
    EXPECT_EQ(SlotOf(&Converter::UpdatePath), 5);
}

} // namespace
