#include "wire/JsonText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr std::size_t kDeepest = 3;

JsonFlaw FlawOf(std::string_view text) {
    return FindJsonFlaw(text, kDeepest);
}

TEST(JsonFlaw, acceptsAKeyOnceInEachObject) {
    for (const char* const text :
         {"", "{}", "[]", R"({"a":1,"b":2,"A":3,"":4})", R"({"a":{"a":{"a":1}}})", R"([{"a":1},{"a":1}])",
          R"({"a":"a","b":"a"})", R"({"a":[{"a":1},"a","a"],"b":{"a":1}})", R"({"\"":1,"\\":2,"\\\"":3})"}) {
        EXPECT_EQ(FlawOf(text), JsonFlaw::None) << text;
    }
}

TEST(JsonFlaw, reportsRepeatedKeyAtAnyDepth) {
    for (const char* const text :
         {R"({"a":1,"a":1})", R"({"a" : 1 , "b":2,"a"	:3})", R"({"":1,"":2})", R"([1,{"b":{"a":1,"a":2}}])",
          R"({"a":{"b":1},"a":2})", R"({"a":["a"],"b":{"a":1},"a":2})", R"({"a\"":1,"a\"":2})"}) {
        EXPECT_EQ(FlawOf(text), JsonFlaw::RepeatedKey) << text;
    }
}

TEST(JsonFlaw, reportsRepeatedKeyInDifferentEscapes) {
    for (const char* const text :
         {R"({"a":1,"\u0061":2})", R"({"\u004A":1,"\u004a":2})", R"({"\n":1,"\u000a":2})",
          R"({"\b\f\r\t":1,"\u0008\u000c\u000d\u0009":2})", R"({"/":1,"\/":2})",
          R"({"\"\\":1,"\u0022\u005C":2})", R"({"ß€":1,"\u00df\u20ac":2})", R"({"😀":1,"\ud83d\ude00":2})"}) {
        EXPECT_EQ(FlawOf(text), JsonFlaw::RepeatedKey) << text;
    }
}

TEST(JsonFlaw, acceptsKeysThatOnlyLookAlike) {
    for (const char* const text :
         {R"({"a":1,"\\u0061":2})", R"({"n":1,"\n":2})", R"({"ß":1,"\u00c3\u009f":2})",
          R"({"😀":1,"\ud83d":2,"\ude00":3})", R"({"a":1,"a\u0000":2,"a\u0000b":3})"}) {
        EXPECT_EQ(FlawOf(text), JsonFlaw::None) << text;
    }
}

// Qt's parser treats the two keys as equal.
TEST(JsonFlaw, reportsZeroByteInKey) {
    using std::string_literals::operator""s;
    EXPECT_EQ(FlawOf("{\"a\0b\":1,\"a\0c\":2}"s), JsonFlaw::ZeroInKey);
    EXPECT_EQ(FlawOf("[{\"x\":{\"\0\":{}}}]"s), JsonFlaw::ZeroInKey);
    EXPECT_EQ(FlawOf("{\"a\\u0000b\":1,\"a\\u0000c\":\"x\0y\"}"s), JsonFlaw::None);
}

TEST(JsonFlaw, reportsTooDeepNesting) {
    EXPECT_EQ(FlawOf(R"([{"a":[]},[[]]])"), JsonFlaw::None);
    EXPECT_EQ(FlawOf(R"(["[[[[{{{{"])"), JsonFlaw::None);
    EXPECT_EQ(FlawOf("[[[["), JsonFlaw::TooDeep);
    EXPECT_EQ(FlawOf(R"({"a":{"b":[{}]}})"), JsonFlaw::TooDeep);
    EXPECT_EQ(FlawOf(std::string(100'000, '[')), JsonFlaw::TooDeep);
}

// The parser reports what is wrong with such a text.
TEST(JsonFlaw, leavesMalformedTextToTheParser) {
    for (const char* const text :
         {"}", "]]", ":", "{:", "{:}", "\"", "\"\\", "{\"a", "{\"a\\", "{\"a\\\"",
          "{\"\\u\":", "{\"\\u00\":", "{\"\\uxyz\":", "{\"\xF0\":", "{\"\xC3\":", "{\"\xFF\":"}) {
        EXPECT_EQ(FlawOf(text), JsonFlaw::None) << text;
    }
}

} // namespace
