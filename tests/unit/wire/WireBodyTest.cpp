#include "wire/WireBody.h"

#include <gtest/gtest.h>

namespace {

using OstraSdk::VeJson;
using namespace std::string_literals;
using OstraSdk::WireBody;

std::string Together(const WireBody& body) {
    std::string bytes;
    for (const std::string_view part : body.Parts())
        bytes += part;
    return bytes;
}

TEST(WireBody, isEmptyForTheEmptyValue) {
    const WireBody body{VeJson()};
    EXPECT_EQ(body.ContentType(), "");
    EXPECT_EQ(body.Size(), 0U);
    EXPECT_TRUE(body.Parts().empty());
}

TEST(WireBody, isJsonWithoutBytes) {
    const WireBody body(VeJson::ParseString(R"({ "b" : [ 1, null, "ü" ], "a" : true })"));
    EXPECT_EQ(body.ContentType(), "application/json");
    EXPECT_EQ(Together(body), R"({"a":true,"b":[1,null,"ü"]})");
    EXPECT_EQ(body.Size(), Together(body).size());
}

TEST(WireBody, isCborWithBytes) {
    VeJson json =
        VeJson::ParseString(R"({"contents":["allWorkspaces"],"n":null,"t":true,"i":-1000,"r":1.1})");
    json.Set("data", VeJson::Bytes{0, 255});
    const WireBody body(json);
    EXPECT_EQ(body.ContentType(), "application/cbor");
    EXPECT_EQ(Together(body), "\xA6\x68"
                              "contents\x81\x6D"
                              "allWorkspaces\x64"
                              "data\x42\x00\xFF\x61i\x39\x03\xE7\x61n\xF6\x61r\xFB\x3F\xF1\x99\x99"
                              "\x99\x99\x99\x9A\x61t\xF5"s);
    EXPECT_EQ(body.Size(), Together(body).size());
}

TEST(WireBody, isCborWithBytesDeepInside) {
    VeJson inner;
    inner.Set("x", VeJson::Bytes{1});
    const WireBody body(VeJson(VeJson::Value(VeJson::Array{VeJson::ParseString("{}"), inner})));
    EXPECT_EQ(Together(body), "\x82\xA0\xA1\x61x\x41\x01");
}

TEST(WireBody, writesEmptyBytes) {
    VeJson json;
    json.Set("a", VeJson::Bytes());
    EXPECT_EQ(Together(WireBody(json)), "\xA1\x61"
                                        "a\x40");
}

TEST(WireBody, doesNotCopyTheBytes) {
    VeJson json;
    json.Set("a", VeJson::Bytes(100'000, 7));
    const auto* const place = reinterpret_cast<const char*>(json.At("a").GetBinary().data());
    const WireBody body(json);
    bool found = false;
    for (const std::string_view part : body.Parts())
        found = found || part.data() == place;
    EXPECT_TRUE(found);
}

TEST(WireBody, recognisesTheContentTypeOfCbor) {
    for (const char* const type :
         {"application/cbor", "Application/CBOR", "application/cbor; a=b", "application/cbor ;a"})
        EXPECT_TRUE(OstraSdk::IsCborType(type)) << type;
    for (const char* const type :
         {"", "application/json", "application/cbor-seq", "application/cbo", "cbor", ";"})
        EXPECT_FALSE(OstraSdk::IsCborType(type)) << type;
}

} // namespace
