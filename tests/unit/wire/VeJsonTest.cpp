#include "wire/VeJson.h"

#include "ThrownBy.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonText.h"

#include <gtest/gtest.h>

#include <clocale>

namespace {

using OstraSdk::VeJson;

/// JSON text with `depth` nested arrays.
std::string Nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

int StatusOf(const std::function<void()>& call) {
    return ThrownBy(call).Status();
}

TEST(VeJson, isEmptyInitially) {
    const VeJson json;
    EXPECT_TRUE(json.IsEmpty());
    EXPECT_FALSE(json.IsObject());
}

TEST(VeJson, readsEveryType) {
    const VeJson json = VeJson::ParseString(
        R"({"yes":true,"no":false,"int":-12,"big":9007199254740992,"real":0.5,"text":"Größe \u20ac","none":null,)"
        R"("list":[1,[2]],"inner":{"key":"value"}})");
    EXPECT_TRUE(json.At("yes").Get<bool>());
    EXPECT_FALSE(json.At("no").Get<bool>());
    EXPECT_EQ(json.At("int").Get<std::int64_t>(), -12);
    EXPECT_EQ(json.At("int").Get<double>(), -12);
    EXPECT_EQ(json.At("big").Get<std::int64_t>(), 9007199254740992);
    EXPECT_EQ(json.At("real").Get<double>(), 0.5);
    EXPECT_EQ(json.At("text").Get<std::string>(), "Größe €");
    EXPECT_TRUE(json.At("none").IsEmpty());
    EXPECT_EQ(std::get<VeJson::Array>(json.At("list").Content()).size(), 2U);
    EXPECT_EQ(json.At("inner").At("key").Get<std::string>(), "value");
}

TEST(VeJson, readsTheBodiesOfTheClient) {
    const VeJson contents = VeJson::ParseString("{\"contents\" : [\"allWorkspaces\"]}");
    EXPECT_EQ(OstraSdk::ToJsonText(contents), R"({"contents":["allWorkspaces"]})");
    EXPECT_TRUE(VeJson::ParseString("{\"enabled\": true}").At("enabled").Get<bool>());
}

TEST(VeJson, refusesARepeatedKey) {
    for (const char* const text : {R"({"a":1,"a":2})", R"({"a":[],"b":0,"a":{}})", R"({"a":[],"\u0061":{}})",
                                   R"([{"b":{"a":1,"a":1}}])", R"({"":[],"":[]})"}) {
        SCOPED_TRACE(text);
        const Ve::Exception refusal = ThrownBy([&] { VeJson::ParseString(text); });
        EXPECT_EQ(refusal.Status(), bERROR_FORMAT);
        EXPECT_STREQ(refusal.what(), "A key is repeated.");
    }
}

TEST(VeJson, refusesAZeroByteInAKey) {
    const std::string text("{\"a\0b\":{\"x\":1},\"a\0c\":2}", 23);
    const Ve::Exception refusal = ThrownBy([&] { VeJson::ParseString(text); });
    EXPECT_EQ(refusal.Status(), bERROR_FORMAT);
    EXPECT_STREQ(refusal.what(), "A key holds a zero byte.");
}

TEST(VeJson, acceptsAKeyOnceInEachOfSeveralObjects) {
    const VeJson json = VeJson::ParseString(R"({"a":{"a":{"A":"a\\","b":"a"}},"b":[{"a":1},{"a":2}]})");
    EXPECT_EQ(json.At("a").At("a").At("A").Get<std::string>(), "a\\");
    EXPECT_EQ(std::get<VeJson::Array>(json.At("b").Content()).at(1).At("a").Get<std::int64_t>(), 2);
}

TEST(VeJson, refusesMalformedText) {
    for (const char* const text :
         {"", " ", "{", "}", "[1,]", "{\"a\"}", "{\"a\":}", "{a:1}", "true", "1", "\"text\"", "{} {}", "{}x",
          "[01]", "[nan]", "\xFF", "{\"a\":\"\xC3\"}", "{\"\\\xC3\xA9\":1}"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(StatusOf([&] { VeJson::ParseString(text); }), bERROR_FORMAT);
    }
}

TEST(VeJson, refusesTruncatedText) {
    const std::string text = R"({"a":[true,{"b":-1.5e3}],"c":"d\n"})";
    EXPECT_NO_THROW(VeJson::ParseString(text));
    for (std::size_t size = 0; size < text.size(); ++size)
        EXPECT_THROW(VeJson::ParseString(text.substr(0, size)), Ve::Exception) << size;
}

TEST(VeJson, readsAtMostSixtyFourLevels) {
    EXPECT_NO_THROW(VeJson::ParseString(Nested(63)));
    EXPECT_NO_THROW(VeJson::ParseString(Nested(64)));
    EXPECT_EQ(StatusOf([] { VeJson::ParseString("[" + Nested(63) + ",1,[[" + Nested(63) + "]]]"); }),
              bERROR_LIMIT);
    EXPECT_EQ(StatusOf([] { VeJson::ParseString(Nested(65)); }), bERROR_LIMIT);
    EXPECT_THROW(VeJson::ParseString(Nested(100'000)), Ve::Exception);
    EXPECT_THROW(VeJson::ParseString(std::string(100'000, '[')), Ve::Exception);
    std::string objects;
    for (int i = 0; i < 100'000; ++i)
        objects += R"({"a":)";
    EXPECT_THROW(VeJson::ParseString(objects), Ve::Exception);
}

TEST(VeJson, refusesTextBeyondItsLimit) {
    const std::string filler(OstraSdk::kMaxText - 4, 'a');
    EXPECT_NO_THROW(VeJson::ParseString("[\"" + filler + "\"]"));
    EXPECT_EQ(StatusOf([&] { VeJson::ParseString("[\"a" + filler + "\"]"); }), bERROR_LIMIT);
}

TEST(VeJson, refusesToBeReadAsAnotherType) {
    const VeJson json =
        VeJson::ParseString(R"({"text":"1","number":1,"real":1.5,"flag":true,"none":null,"list":[]})");
    for (const char* const key : {"text", "number", "real", "none", "list"})
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).Get<bool>()); }), bERROR_FORMAT) << key;
    for (const char* const key : {"text", "flag", "real", "none", "list"})
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).Get<std::int64_t>()); }), bERROR_FORMAT)
            << key;
    for (const char* const key : {"text", "flag", "none", "list"})
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).Get<double>()); }), bERROR_FORMAT) << key;
    for (const char* const key : {"number", "flag", "none", "list"})
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).Get<std::string>()); }), bERROR_FORMAT)
            << key;
    for (const char* const key : {"text", "number", "flag", "none", "list"}) {
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).GetBinary()); }), bERROR_FORMAT) << key;
        EXPECT_EQ(StatusOf([&] { static_cast<void>(json.At(key).At("a")); }), bERROR_FORMAT) << key;
    }
}

TEST(VeJson, namesTheMemberThatIsMissing) {
    const VeJson json = VeJson::ParseString(R"({"a":1})");
    EXPECT_FALSE(json.Has("%s"));
    EXPECT_TRUE(json.Has("a"));
    const Ve::Exception e = ThrownBy([&] { static_cast<void>(json.At("%s")); });
    EXPECT_EQ(e.Status(), bERROR_FORMAT);
    EXPECT_STREQ(e.what(), "The member \"%s\" is missing.");
}

TEST(VeJson, setsMembersOfEveryType) {
    VeJson json;
    json.Set("flag", true);
    json.Set("number", 3600U);
    json.Set("negative", -1L);
    json.Set("real", 0.25);
    json.Set("words", "some");
    json.Set("text", std::string("more"));
    json.Set("inner", VeJson::ParseString("[1]"));
    EXPECT_EQ(OstraSdk::ToJsonText(json),
              R"({"flag":true,"inner":[1],"negative":-1,"number":3600,"real":0.25,)"
              R"("text":"more","words":"some"})");
    json.Set("flag", false);
    EXPECT_FALSE(json.At("flag").Get<bool>());
    json.At("inner") = VeJson();
    EXPECT_TRUE(json.At("inner").IsEmpty());
}

TEST(VeJson, refusesToSetAMemberOfANonObject) {
    VeJson json = VeJson::ParseString("[1]");
    EXPECT_EQ(StatusOf([&] { json.Set("a", 1); }), bERROR_FORMAT);
}

TEST(VeJson, holdsBytesThatItsCopiesShare) {
    const VeJson::Bytes bytes{0, 1, 255};
    VeJson json;
    json.Set("data", bytes);
    const VeJson copy = json;
    EXPECT_EQ(copy.At("data").GetBinary(), bytes);
    EXPECT_EQ(copy.At("data").GetBinary().data(), json.At("data").GetBinary().data());
    json.Set("data", VeJson::Bytes{7});
    EXPECT_EQ(copy.At("data").GetBinary(), bytes);
}

TEST(VeJson, movesBytesWithoutCopyingThem) {
    VeJson::Bytes bytes(1000, 7);
    const std::uint8_t* const place = bytes.data();
    VeJson json;
    json.Set("data", std::move(bytes));
    EXPECT_EQ(json.At("data").GetBinary().data(), place);
}

TEST(VeJson, cannotBeWrittenAsTextWhenItHoldsBytes) {
    VeJson json;
    json.Set("data", VeJson::Bytes{7});
    EXPECT_EQ(StatusOf([&] { OstraSdk::ToJsonText(json); }), bERROR_PARAMETER);
}

TEST(VeJson, readsAndWritesTheSameUnderACommaLocale) {
    for (const char* const name : {"de_DE.UTF-8", "fr_FR.UTF-8"})
        if (std::setlocale(LC_ALL, name) != nullptr)
            break;
    const VeJson json = VeJson::ParseString(R"({"a":1234.5})");
    EXPECT_EQ(json.At("a").Get<double>(), 1234.5);
    EXPECT_EQ(OstraSdk::ToJsonText(json), R"({"a":1234.5})");
    std::setlocale(LC_ALL, "C");
}

} // namespace
