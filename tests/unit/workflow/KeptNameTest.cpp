#include "workflow/KeptName.h"
#include "FixedTime.h"

#include <gmock/gmock.h>

namespace {

using testing::EndsWith;
using testing::StartsWith;

class KeptNameTest : public testing::Test {
  protected:
    static std::string TextOf(const std::string& original, KeptReason reason = KeptReason::Unsaved,
                              unsigned number = 1) {
        return KeptName(kTime, original, reason).Text(number);
    }

    /// The part between the time and the reason.
    static std::string OriginalIn(const std::string& original) {
        const std::string text = TextOf(original);
        EXPECT_TRUE(KeptName::IsOne(text)) << text;
        EXPECT_LE(text.size(), 255U);
        return text.substr(20, text.rfind(" (") - 20);
    }

    TimeZone zone{"UTC0"};
};

TEST_F(KeptNameTest, hasTimeOriginalReasonAndExtension) {
    EXPECT_EQ(TextOf("cover.trk"), "2026-11-22 14.03.12 cover.trk (unsaved).trk");
    EXPECT_EQ(TextOf("/a b/c.d/station.osbak", KeptReason::Replaced),
              "2026-11-22 14.03.12 station.osbak (replaced).osbak");
    EXPECT_EQ(TextOf("a", KeptReason::TextOriginal), "2026-11-22 14.03.12 a (text original)");
    EXPECT_EQ(TextOf("a.trk", KeptReason::Unsent), "2026-11-22 14.03.12 a.trk (unsent).trk");
    EXPECT_EQ(TextOf("a.trk", KeptReason::Deleted), "2026-11-22 14.03.12 a.trk (deleted).trk");
    EXPECT_EQ(TextOf("a.trk", KeptReason::Crash), "2026-11-22 14.03.12 a.trk (crash).trk");
}

TEST_F(KeptNameTest, hasTheLocalTime) {
    const TimeZone east("Place-9:30");
    EXPECT_THAT(TextOf("a.trk"), StartsWith("2026-11-22 23.33.12 a.trk"));
}

TEST_F(KeptNameTest, countsFurtherCopies) {
    EXPECT_EQ(TextOf("a.trk", KeptReason::Unsaved, 2), "2026-11-22 14.03.12 a.trk (unsaved 2).trk");
    EXPECT_EQ(TextOf("a", KeptReason::TextOriginal, 10), "2026-11-22 14.03.12 a (text original 10)");
}

TEST_F(KeptNameTest, canHaveAnotherExtension) {
    KeptName name(kTime, "cover.trk", KeptReason::Crash);
    name.SetExtension(".csv");
    EXPECT_EQ(name.Text(), "2026-11-22 14.03.12 cover.trk (crash).csv");
}

TEST_F(KeptNameTest, recognisesOnlyPlausibleExtensions) {
    for (const char* const original : {"a.", "a.b c", "a.(b)", "a.übel", "a.12345678901234567", "."})
        EXPECT_THAT(TextOf(original), EndsWith("(unsaved)")) << original;
    EXPECT_THAT(TextOf("a.123456789012345"), EndsWith("(unsaved).123456789012345"));
    EXPECT_THAT(TextOf(".trk"), EndsWith("12 .trk (unsaved).trk"));
}

TEST_F(KeptNameTest, isOneLineOfValidText) {
    EXPECT_EQ(OriginalIn("a\nb\rc\td\x7F\x01.trk"), "a_b_c_d__.trk");
    EXPECT_EQ(OriginalIn(std::string("a\0b.trk", 7)), "a_b.trk");
    EXPECT_EQ(OriginalIn("\xE2\x80\xA8x\xC2\x85.trk"),
              "_x_.trk"); // a line separator and a non-ASCII control character
    EXPECT_EQ(OriginalIn("gr\xFF\xFE.trk"), "gr\xEF\xBF\xBD\xEF\xBF\xBD.trk");
    EXPECT_EQ(OriginalIn("cut\xC3"), "cut\xEF\xBF\xBD");
    EXPECT_EQ(OriginalIn("größe 日本 😀 %s \"x\" (unsaved).trk"), "größe 日本 😀 %s \"x\" (unsaved).trk");
    EXPECT_EQ(OriginalIn(""), "_");
    EXPECT_EQ(OriginalIn("folder/"), "_");
    EXPECT_EQ(OriginalIn(".."), "..");
}

TEST_F(KeptNameTest, cutsLongNamesBetweenCharacters) {
    // "2026-11-22 14.03.12 " and " (unsaved).trk" leave 255 - 20 - 14 bytes.
    constexpr std::size_t kLeft = 221;
    const std::string plain(251, 'x');
    EXPECT_EQ(OriginalIn(plain + ".trk"), std::string(kLeft, 'x'));
    EXPECT_EQ(OriginalIn(std::string(kLeft - 4, 'x') + ".trk"), std::string(kLeft - 4, 'x') + ".trk");
    for (const std::string letter : {"ü", "日", "😀"}) {
        for (std::size_t before = 0; before < letter.size(); ++before) {
            std::string name(before, 'x');
            while (name.size() + letter.size() <= 251)
                name += letter;
            const std::size_t letters = (kLeft - before) / letter.size();
            EXPECT_EQ(OriginalIn(name + ".trk"), name.substr(0, before + letters * letter.size()));
        }
    }
    EXPECT_EQ(TextOf(plain + ".trk", KeptReason::TextOriginal, 10'000).size(), 255U);
    // Each invalid byte becomes three.
    EXPECT_EQ(OriginalIn(std::string(255, '\xFF')).size(), 225U);
}

TEST_F(KeptNameTest, isRecognised) {
    for (const char* const name :
         {"2026-11-22 14.03.12 cover.trk (unsaved).trk", "2026-11-22 14.03.12 a (text original 12)",
          "0000-00-00 00.00.00 a b (x) (crash).csv", "2026-11-22 14.03.12   (deleted).trk"})
        EXPECT_TRUE(KeptName::IsOne(name)) << name;
}

TEST_F(KeptNameTest, isDistinguishedFromOtherNames) {
    for (const char* const name : {"",
                                   "cover.trk",
                                   "2026-11-22 14.03.12",
                                   "2026-11-22 14.03.12 ",
                                   "2026-11-22 14.03.12 cover.trk",
                                   "2026-11-22 14.03.12 cover.trk (mine).trk",
                                   "2026-11-22 14.03.12 (unsaved).trk",
                                   "2026-11-22 14.03.12 a (unsaved)trk",
                                   "2026-11-22 14.03.12 a (unsaved). trk",
                                   "2026-11-22 14.03.12 a (unsaved x).trk",
                                   "2026-11-22 14.03.12 a (unsaved ).trk",
                                   "2026-11-22 14.03.12 a (unsaved2).trk",
                                   "2026-11-22 14.03.12 a (unsaved).trk~",
                                   "2026-11-22 14.03.12 a (unsaved).trk.part 1",
                                   "2026-11-22 14:03:12 a (unsaved).trk",
                                   "2026-11-2x 14.03.12 a (unsaved).trk",
                                   " 2026-11-22 14.03.12 a (unsaved).trk",
                                   "2026-11-22 14.03.12 a\n (unsaved).trk",
                                   "2026-11-22 14.03.12 a (unsaved",
                                   ".corvane-abc123",
                                   "2026-11-22 14.03.12 a ) (",
                                   "2026-11-22 14.03.12 a (Unsaved).trk"})
        EXPECT_FALSE(KeptName::IsOne(name)) << name;
}

} // namespace
