#include "wire/CborReader.h"

#include "ScriptedServer.h"
#include "ThrownBy.h"
#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using OstraSdk::CborReader;
using OstraSdk::VeJson;
using namespace std::string_literals;

/// A body that arrives in pieces of a fixed size.
class Pieces final : public OstraSdk::ByteSource {
  public:
    Pieces(std::string bytes, std::size_t pieceSize) : bytes(std::move(bytes)), pieceSize(pieceSize) {}

    std::size_t Read(char* target, std::size_t capacity) override {
        const std::size_t count = std::min({pieceSize, capacity, bytes.size() - at});
        at += bytes.copy(target, count, at);
        return count;
    }
    [[nodiscard]] std::size_t Taken() const { return at; }

  private:
    std::string bytes;
    std::size_t pieceSize;
    std::size_t at = 0;
};

VeJson Read(const std::string& body, std::size_t pieceSize = SIZE_MAX, bool sizeIsKnown = true) {
    Pieces pieces(body, pieceSize);
    return CborReader(pieces, {sizeIsKnown ? body.size() : std::uint64_t{1} << 40U, OstraSdk::kMaxText})
        .Read();
}

/// A one-member map {"a": <item>}.
std::string MapOf(const std::string& item) {
    return "\xA1\x61"
           "a" +
           item;
}

int StatusOf(const std::string& body) {
    return ThrownBy([&] { Read(body); }).Status();
}

// {"n":null,"y":true,"f":false,"i":1000000,"m":-1000,"h":1.5,"s":-4.1 as float,"d":1.1,"t":"ü","b":h'00FF',
//  "l":[1,[],{}]}
const std::string kEverything = "\xAB"
                                "\x61n\xF6\x61y\xF5\x61"
                                "f\xF4\x61i\x1A\x00\x0F\x42\x40\x61m\x39\x03\xE7\x61h\xF9\x3E\x00"
                                "\x61s\xFA\xC0\x83\x33\x33\x61"
                                "d\xFB\x3F\xF1\x99\x99\x99\x99\x99\x9A\x61t\x62\xC3\xBC\x61"
                                "b\x42\x00\xFF\x61l\x83\x01\x80\xA0"s;

TEST(CborReader, readsEveryType) {
    const VeJson json = Read(kEverything);
    EXPECT_TRUE(json.At("n").IsEmpty());
    EXPECT_TRUE(json.At("y").Get<bool>());
    EXPECT_FALSE(json.At("f").Get<bool>());
    EXPECT_EQ(json.At("i").Get<std::int64_t>(), 1000000);
    EXPECT_EQ(json.At("m").Get<std::int64_t>(), -1000);
    EXPECT_EQ(json.At("h").Get<double>(), 1.5);
    EXPECT_EQ(json.At("s").Get<double>(), static_cast<double>(-4.1F));
    EXPECT_EQ(json.At("d").Get<double>(), 1.1);
    EXPECT_EQ(json.At("t").Get<std::string>(), "ü");
    EXPECT_EQ(json.At("b").GetBinary(), (VeJson::Bytes{0, 255}));
    EXPECT_EQ(std::get<VeJson::Array>(json.At("l").Content()).size(), 3U);
}

TEST(CborReader, readsTheSameHoweverTheBodyIsSplit) {
    const std::string large = CborDataHead(10'000) + std::string(10'000, 'x');
    for (const std::size_t size : {1U, 2U, 3U, 7U, 64U, 4096U})
        for (const bool known : {true, false}) {
            EXPECT_EQ(Read(kEverything, size, known).At("d").Get<double>(), 1.1);
            EXPECT_EQ(Read(large, size, known).At("data").GetBinary(), VeJson::Bytes(10'000, 'x'));
        }
}

TEST(CborReader, separatesSeveralByteStrings) {
    const VeJson json = Read("\xA3\x61"
                             "a\x41\x01\x61"
                             "b\x40\x61"
                             "c\x82\x43\x02\x03\x04\x41\x05"s);
    EXPECT_EQ(json.At("a").GetBinary(), VeJson::Bytes{1});
    EXPECT_TRUE(json.At("b").GetBinary().empty());
    const auto& list = std::get<VeJson::Array>(json.At("c").Content());
    EXPECT_EQ(list.at(0).GetBinary(), (VeJson::Bytes{2, 3, 4}));
    EXPECT_EQ(list.at(1).GetBinary(), VeJson::Bytes{5});
}

TEST(CborReader, refusesATruncatedBody) {
    EXPECT_TRUE(Read("").IsEmpty());
    for (std::size_t size = 1; size < kEverything.size(); ++size) {
        EXPECT_EQ(StatusOf(kEverything.substr(0, size)), bERROR_FORMAT) << size;
        EXPECT_THROW(Read(kEverything.substr(0, size), 1, false), Ve::Exception) << size;
    }
}

TEST(CborReader, refusesBytesAfterTheValue) {
    EXPECT_EQ(StatusOf(kEverything + "\x01"), bERROR_FORMAT);
    EXPECT_EQ(StatusOf(kEverything + kEverything), bERROR_FORMAT);
}

TEST(CborReader, refusesALengthBeyondTheBodyBeforeItsBytesArrive) {
    for (const std::uint64_t size : {11ULL, 10'000'000'000ULL, 1ULL << 62U, 1ULL << 63U, ~0ULL}) {
        const std::string head = CborDataHead(size);
        Pieces body(head + std::string(10, 'x'), 1);
        EXPECT_THROW(CborReader(body, {head.size() + 10, OstraSdk::kMaxText}).Read(), Ve::Exception);
        EXPECT_EQ(body.Taken(), head.size());
    }
    EXPECT_NO_THROW(Read(CborDataHead(10) + std::string(10, 'x')));
}

TEST(CborReader, passesByteStringsToASinkThatMayReadThemPartly) {
    const std::string body = "\xA3\x61"
                             "a\x43"
                             "123\x61"
                             "b\x81\x42"
                             "45\x61"
                             "c\x07"s;
    for (const std::size_t taken : {0U, 1U, 2U, 3U}) {
        Pieces pieces(body, 2);
        std::string seen;
        const VeJson json = CborReader(pieces, {body.size(), OstraSdk::kMaxText}).Read([&](auto& bytes) {
            seen += bytes.Key() + std::to_string(bytes.Left()) + ':';
            std::string part(taken, '\0');
            std::size_t count = 0;
            while (const std::size_t some = bytes.Read(part.data() + count, part.size() - count))
                count += some;
            seen += part.substr(0, count) + ' ';
            return VeJson::Bytes();
        });
        EXPECT_EQ(seen, "a3:" + "123"s.substr(0, taken) + " 2:" + "45"s.substr(0, taken) + ' ');
        EXPECT_TRUE(json.At("a").GetBinary().empty());
        EXPECT_EQ(json.At("c").Get<std::int64_t>(), 7);
    }
}

TEST(CborReader, refusesAMissingLengthInABodyOfUnknownSize) {
    for (const std::uint64_t size : {4ULL, 10'000'000'000ULL, 1ULL << 62U, 1ULL << 63U, ~0ULL})
        EXPECT_THROW(Read(CborDataHead(size) + "abc", 1000, false), Ve::Exception);
    EXPECT_THROW(Read("\x7B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
                      "abc",
                      1000, false),
                 Ve::Exception);
}

TEST(CborReader, refusesHugeCountsOfMembersAndValues) {
    const std::string huge = "\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s;
    EXPECT_EQ(StatusOf("\xBB" + huge), bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\x9B" + huge), bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\x9B" + std::string(8, '\xFF') + "\x01"), bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\xBB" + std::string(8, '\xFF')), bERROR_FORMAT);
}

TEST(CborReader, refusesIndefiniteLengths) {
    for (const std::string body :
         {"\x9F\xFF", "\xBF\xFF", "\x81\x5F\x41\x01\xFF", "\x81\x7F\x61\x61\xFF", "\xFF", "\x81\xFF"})
        EXPECT_EQ(StatusOf(body), bERROR_FORMAT);
}

TEST(CborReader, refusesReservedHeaders) {
    for (unsigned int first = 0; first < 256; ++first) {
        const std::string body = "\x81" + std::string(1, static_cast<char>(first)) + std::string(20, '\0');
        if ((first & 0x1FU) >= 28) {
            EXPECT_EQ(StatusOf(body), bERROR_FORMAT) << first;
        }
    }
}

TEST(CborReader, refusesWhatAValueCannotHold) {
    for (const std::string& item : {"\xC1\x01"s, "\xD9\xD9\xF7\xA0"s, "\xE0"s, "\xF8\xFF"s, "\xF7"s})
        EXPECT_EQ(StatusOf(MapOf(item)), bERROR_FORMAT);
    for (const std::string body : {"\x01", "\x61\x61", "\x41\x61", "\xF5", "\xF6"})
        EXPECT_EQ(StatusOf(body), bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\xA1\x01\x01"), bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\xA1\x41\x61\x01"), bERROR_FORMAT);
    EXPECT_EQ(StatusOf(MapOf("\x62\xC3\x28")), bERROR_FORMAT); // not UTF-8
    EXPECT_EQ(StatusOf("\xA1\x61\xFF\x01"), bERROR_FORMAT);
}

TEST(CborReader, readsIntegersUpToTheirBounds) {
    const std::string largest = "\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s;
    const std::string beyond = "\x80\x00\x00\x00\x00\x00\x00\x00"s;
    EXPECT_EQ(Read(MapOf("\x1B" + largest)).At("a").Get<std::int64_t>(), INT64_MAX);
    EXPECT_EQ(StatusOf(MapOf("\x1B" + beyond)), bERROR_LIMIT);
    EXPECT_EQ(StatusOf(MapOf("\x3B" + beyond)), bERROR_LIMIT);
    EXPECT_EQ(StatusOf(MapOf("\x3B" + std::string(8, '\xFF'))), bERROR_LIMIT);
    EXPECT_EQ(Read(MapOf("\x20")).At("a").Get<std::int64_t>(), -1);
}

TEST(CborReader, readsNanAndInfinity) {
    EXPECT_TRUE(std::isnan(Read(MapOf("\xF9\x7E\x00"s)).At("a").Get<double>()));
    EXPECT_TRUE(std::isinf(Read(MapOf("\xFA\x7F\x80\x00\x00"s)).At("a").Get<double>()));
}

TEST(CborReader, refusesARepeatedKey) {
    EXPECT_EQ(StatusOf("\xA2\x61"
                       "a\x41\x01\x61"
                       "a\x42\x02\x03"),
              bERROR_FORMAT);
    EXPECT_EQ(StatusOf("\xA3\x61"
                       "a\xF6\x61"
                       "b\xF6\x61"
                       "a\xF6"),
              bERROR_FORMAT);
    EXPECT_NO_THROW(Read("\xA2\x61"
                         "a\x01\x61"
                         "A\xA1\x61"
                         "a\x02"));
}

TEST(CborReader, readsAtMostSixtyFourLevels) {
    EXPECT_NO_THROW(Read(std::string(63, '\x81') + "\x80"));
    EXPECT_NO_THROW(Read(std::string(64, '\x81') + "\x01"));
    EXPECT_EQ(StatusOf(std::string(65, '\x81') + "\x01"), bERROR_LIMIT);
    EXPECT_EQ(StatusOf(std::string(64, '\x81') + "\x80"), bERROR_LIMIT);
    EXPECT_EQ(StatusOf(std::string(100'000, '\x81')), bERROR_LIMIT);
    std::string maps;
    for (int i = 0; i < 100'000; ++i)
        maps += "\xA1\x61"
                "a";
    EXPECT_EQ(StatusOf(maps), bERROR_LIMIT);
}

TEST(CborReader, limitsEverythingButByteStrings) {
    constexpr std::size_t kMiB = std::size_t{1024} * 1024;
    const std::string text = MapOf("\x7A" + "\x00\x10\x00\x00"s); // a string of 1 MiB
    EXPECT_EQ(StatusOf(text + std::string(kMiB, 'a')), bERROR_LIMIT);
    EXPECT_EQ(StatusOf("\x9A" + "\x00\x20\x00\x00"s + std::string(2 * kMiB, '\x01')), bERROR_LIMIT);
    EXPECT_EQ(StatusOf("\x99\x03\xE9" + std::string(1001, '\x40')), bERROR_LIMIT);
    EXPECT_NO_THROW(Read("\x99\x03\xE8" + std::string(1000, '\x40')));
}

TEST(CborReader, survivesRandomBytes) {
    std::mt19937 random(20260101); // NOLINT(bugprone-random-generator-seed,cert-msc51-cpp): to be repeatable
    int read = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string body = kEverything;
        for (unsigned int change = 0; change <= random() % 3; ++change)
            body[random() % body.size()] = static_cast<char>(random());
        try {
            Read(body, 1 + random() % 80, random() % 2 == 0);
            ++read;
        } catch (const Ve::Exception&) {
        }
    }
    EXPECT_GT(read, 0);
}

} // namespace
