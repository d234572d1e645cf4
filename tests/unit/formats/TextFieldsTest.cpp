#include "document/formats/CsvScan.h"
#include "document/formats/NumberText.h"

#include "CommaLocale.h"

#include <boost/tokenizer.hpp>
#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <initializer_list>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kRandomLines = 100'000;
#else
constexpr int kRandomLines = 1'000'000;
#endif

constexpr std::array kKeywords = {"End", "Info", "YX", "Anchor", "Ruler", "Segment"};

/// The contents of one line.
struct Reading {
    std::vector<std::optional<std::uint64_t>> numbers; ///< the bits of each field's double, none when empty
    std::vector<int> integers;
    unsigned keywords = 0; ///< a bit for each keyword that the first field contains
    std::string error;

    bool operator==(const Reading&) const = default;
};

/// Read by the tokenizer and the C library; the process must be in the C locale.
Reading PlainReading(const std::string& line) {
    Reading reading;
    try {
        const boost::tokenizer<boost::escaped_list_separator<char>> tokens(line);
        for (const std::string& field : std::vector<std::string>(tokens.begin(), tokens.end())) {
            if (reading.numbers.empty()) {
                for (std::size_t i = 0; i < kKeywords.size(); ++i)
                    reading.keywords |= (field.find(kKeywords[i]) != std::string::npos ? 1U : 0U) << i;
            }
            reading.numbers.emplace_back();
            // NOLINTBEGIN(cert-err34-c): these two are the rule to compare with
            if (!field.empty())
                reading.numbers.back() = std::bit_cast<std::uint64_t>(std::atof(field.c_str()));
            reading.integers.push_back(std::atoi(field.c_str()));
            // NOLINTEND(cert-err34-c)
        }
    } catch (const boost::escaped_list_error& error) {
        reading = {};
        reading.error = error.what();
    }
    return reading;
}

/// Reads the fields as a height map's rows are read: as packed decimals where possible, each with the
/// previous one as its pattern.
void ExpectTheSamePacked(const CsvLine& line, const Reading& reading) {
    PackedDecimal packed;
    std::size_t index = 0;
    for (CsvFields fields(line); fields.HasNext(); ++index) {
        double value = 0.0;
        const bool isPacked = fields.NextPacked(packed);
        if (isPacked)
            value = packed.Value();
        const bool isNumber = isPacked || fields.NextNumber(value);
        EXPECT_EQ(isNumber, reading.numbers.at(index).has_value());
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), reading.numbers.at(index).value_or(0)) << line.Text();
    }
    EXPECT_EQ(index, reading.numbers.size());
}

Reading OurReading(const std::string& text) {
    const std::vector<char> bytes(text.begin(), text.end()); // with nothing readable after the end
    Reading reading;
    CsvLine line;
    try {
        line.Split(std::string_view(bytes.data(), bytes.size()));
    } catch (const boost::escaped_list_error& error) {
        reading.error = error.what();
        return reading;
    }
    for (std::size_t i = 0; i < kKeywords.size(); ++i)
        reading.keywords |= (line.StartsWith(kKeywords[i]) ? 1U : 0U) << i;
    for (CsvFields fields(line); fields.HasNext();) {
        double value = 0.0;
        reading.numbers.emplace_back();
        if (fields.NextNumber(value))
            reading.numbers.back() = std::bit_cast<std::uint64_t>(value);
    }
    std::size_t index = 0;
    for (CsvFields fields(line); fields.HasNext(); ++index) {
        const std::string_view field = fields.Next();
        reading.integers.push_back(ToInt32(field));
        const auto bits = std::bit_cast<std::uint64_t>(ToDouble(field));
        EXPECT_EQ(bits, reading.numbers.at(index).value_or(0)) << field;
        EXPECT_EQ(field.empty(), !reading.numbers.at(index).has_value());
    }
    ExpectTheSamePacked(line, reading);
    EXPECT_EQ(line.FieldCount(), reading.numbers.size());
    EXPECT_EQ(line.HasFields(), !reading.numbers.empty());
    return reading;
}

const std::vector<std::string>& OddFields() {
    using namespace std::string_literals;
    static const std::vector<std::string> fields = {"",
                                                    " ",
                                                    "0",
                                                    "-0",
                                                    "-0.0",
                                                    "-",
                                                    "--1",
                                                    "+",
                                                    "+1",
                                                    "+1.5",
                                                    "+-1",
                                                    "- 1",
                                                    " 1",
                                                    "\t1",
                                                    "\v\f\r1.5",
                                                    " +2",
                                                    "  -3.25 ",
                                                    "1 2",
                                                    ".",
                                                    "-.",
                                                    ".5",
                                                    "-.5",
                                                    "5.",
                                                    "-5.",
                                                    "1.2.3",
                                                    "1..2",
                                                    "12abc",
                                                    "1,5"s.substr(0, 1),
                                                    "1.5e3",
                                                    "1e5",
                                                    "1E-5",
                                                    "1e",
                                                    "1e+",
                                                    "1e-",
                                                    "1.e2",
                                                    ".e2",
                                                    "e5",
                                                    "1e400",
                                                    "-1e400",
                                                    "1e-400",
                                                    "-1e-400",
                                                    "1e308",
                                                    "1.7976931348623157e308",
                                                    "1.7976931348623159e308",
                                                    "4.9e-324",
                                                    "2.4703282292062327e-324",
                                                    "2.4703282292062328e-324",
                                                    "2.2250738585072011e-308",
                                                    "nan",
                                                    "NAN",
                                                    "-nan",
                                                    "nan(123)",
                                                    "nanx",
                                                    "inf",
                                                    "-inf",
                                                    "INF",
                                                    "+inf",
                                                    "infinity",
                                                    "Infinity7",
                                                    "infinit",
                                                    "0x",
                                                    "0x1",
                                                    "-0x1F",
                                                    "0x1.8p3",
                                                    "0X1P-3",
                                                    "0x.8",
                                                    "0xg",
                                                    "0x1p",
                                                    "00x1",
                                                    "123456789012345",
                                                    "1234567890123456",
                                                    "12345678901234567",
                                                    "9007199254740993",
                                                    "0.1",
                                                    "0.12345678901234",
                                                    "0.123456789012345",
                                                    "0.1234567890123456",
                                                    "0.12345678901234567",
                                                    "00000000000000000000001",
                                                    "0.00000000000000000000001",
                                                    "1234567",
                                                    "-123456",
                                                    "12345678",
                                                    "123.4567",
                                                    "-123.456",
                                                    "999.9999",
                                                    "9999999",
                                                    "-99.9999",
                                                    "0.000001",
                                                    ".000001",
                                                    "2147483647",
                                                    "2147483648",
                                                    "-2147483648",
                                                    "-2147483649",
                                                    "4294967295",
                                                    "4294967296",
                                                    "9223372036854775807",
                                                    "9223372036854775808",
                                                    "-9223372036854775809",
                                                    "99999999999999999999999",
                                                    "1\0002"s,
                                                    "\0"s,
                                                    "\0001"s,
                                                    "1;5",
                                                    "\xc3\xbc",
                                                    "\xa0\x31",
                                                    "1\xa0",
                                                    "1'000",
                                                    "1_000",
                                                    "1/2",
                                                    "1:2",
                                                    "12\n",
                                                    "/",
                                                    ":",
                                                    "1.5/",
                                                    "1.:5",
                                                    "End",
                                                    "MyInfo",
                                                    "YX",
                                                    "Anchors",
                                                    "Segments",
                                                    "Ruler",
                                                    "aEndb",
                                                    "\"\"",
                                                    "\"1,5\"",
                                                    "\"End,\"",
                                                    "\"a,End\"",
                                                    "En\"d\"",
                                                    "\"open",
                                                    "\\\"",
                                                    "\\\\",
                                                    "\\n1",
                                                    "\"\\n\"",
                                                    "1\\\\",
                                                    "\"1\"",
                                                    "\"-\"2",
                                                    "\\x",
                                                    "\\",
                                                    "\\,",
                                                    "\"a\\"};
    return fields;
}

std::string Joined(std::initializer_list<std::string_view> parts) {
    std::string line;
    for (const std::string_view part : parts)
        line += part;
    return line;
}

class LineMaker {
  public:
    std::string Next() {
        std::string line = Field();
        for (int more = Pick(7); more > 0; --more)
            line += ',' + Field();
        return line;
    }

  private:
    int Pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }

    std::string Digits(int count) {
        std::string digits;
        for (; count > 0; --count)
            digits += static_cast<char>('0' + Pick(10));
        return digits;
    }

    std::string Decimal() {
        std::string number = Pick(3) == 0 ? "-" : "";
        number += Digits(Pick(4) == 0 ? Pick(18) : Pick(5));
        if (Pick(4) != 0)
            number += '.' + Digits(Pick(6) == 0 ? Pick(24) : Pick(4));
        if (Pick(8) == 0)
            number += std::string(Pick(2) == 0 ? "e" : "E") + (Pick(2) == 0 ? "-" : "") + Digits(Pick(4));
        return number;
    }

    std::string Noise() {
        static const std::string alphabet = "0123456789.-+eE xXpPnaif\t;:/\"\\";
        std::string noise;
        for (int count = Pick(10); count > 0; --count)
            noise += alphabet[static_cast<std::size_t>(Pick(static_cast<int>(alphabet.size())))];
        return noise;
    }

    std::string Field() {
        const int kind = Pick(40);
        if (kind < 28)
            return Decimal();
        if (kind < 31)
            return "";
        if (kind == 39)
            return Noise();
        const auto& odd = OddFields();
        const std::string& field = odd[static_cast<std::size_t>(Pick(static_cast<int>(odd.size())))];
        // Bad escapes fail the complete line: most lines have none.
        return field.find('\\') != std::string::npos && Pick(4) != 0 ? "1" : field;
    }

    std::mt19937 random{20'240'607};
};

TEST(TextFields, readOddFormsLikeTheTokenizerAndTheLibrary) {
    for (const std::string& field : OddFields()) {
        for (const std::string& line :
             {field, Joined({field, ",1"}), Joined({"1,", field}), Joined({"1,", field, ",2.5,,3.25,4.125,"}),
              Joined({field, ",", field, ",", field})}) {
            EXPECT_EQ(OurReading(line), PlainReading(line)) << line;
        }
    }
}

TEST(TextFields, readLongFieldsLikeTheTokenizerAndTheLibrary) {
    for (const std::size_t size : {100U, 800U, 100'000U}) {
        const std::string digits(size, '7');
        for (const std::string& line :
             {digits, Joined({"0.", digits}), Joined({digits, ".", digits}),
              Joined({"1,", digits, "e-900,2"}), Joined({"-", std::string(size, '0'), "1"}),
              Joined({std::string(size, ' '), "1"})})
            EXPECT_EQ(OurReading(line), PlainReading(line)) << line.substr(0, 20) << "... of " << line.size();
    }
}

TEST(TextFields, readRandomLinesLikeTheTokenizerAndTheLibraryUnderACommaLocale) {
    const CommaLocale locale;
    LineMaker maker;
    constexpr int kBatch = 10'000;
    static_assert(kRandomLines % kBatch == 0);
    for (int done = 0; done < kRandomLines; done += kBatch) {
        locale.Leave();
        std::vector<std::string> lines;
        std::vector<Reading> expected;
        for (int i = 0; i < kBatch; ++i) {
            lines.push_back(maker.Next());
            expected.push_back(PlainReading(lines.back()));
        }
        locale.Enter();
        for (std::size_t i = 0; i < lines.size(); ++i)
            ASSERT_EQ(OurReading(lines[i]), expected[i]) << lines[i];
    }
}

TEST(TextFields, useADecimalPointUnderACommaLocale) {
    const CommaLocale locale;
    ASSERT_EQ(std::strtod("1,5", nullptr), 1.5) << "the locale is not in effect";
    EXPECT_EQ(ToDouble("1.5"), 1.5);
    EXPECT_EQ(ToDouble(" 1.5"), 1.5);
    EXPECT_EQ(ToDouble("1;5"), 1.0);
    EXPECT_EQ(ToDouble("0x1.8p0"), 1.5);
    EXPECT_EQ(ToDouble("1234567890.12345678"), 1234567890.12345678);
}

TEST(TextFields, skipLeadingBlanksAndIgnoreTrailingText) {
    EXPECT_EQ(ToDouble("  \t2.5mm"), 2.5);
    EXPECT_EQ(ToInt32("  \t25mm"), 25);
}

TEST(TextFields, readNonNumbersAsZero) {
    EXPECT_EQ(ToDouble("height"), 0.0);
    EXPECT_EQ(ToInt32("height"), 0);
    EXPECT_EQ(ToDouble(""), 0.0);
    EXPECT_EQ(ToInt32(""), 0);
    EXPECT_EQ(ToInt32("2.9"), 2);
}

TEST(TextFields, truncateIntegersBeyondLongToTheirLowBits) {
    EXPECT_EQ(ToInt32("4294967299"), 3);
    EXPECT_EQ(ToInt32("99999999999999999999"), -1);
    EXPECT_EQ(ToInt32("-99999999999999999999"), 0);
}

TEST(TextFields, areAbsentOnlyInAnEmptyLine) {
    CsvLine line;
    line.Split("");
    EXPECT_FALSE(line.HasFields());
    EXPECT_EQ(line.FieldCount(), 0U);
    line.Split("\"\"");
    EXPECT_TRUE(line.HasFields());
    EXPECT_EQ(line.FieldCount(), 1U);
    line.Split(",");
    EXPECT_EQ(line.FieldCount(), 2U);
}

TEST(TextFields, areCountedInLinesOfEveryLength) {
    for (std::size_t commas = 0; commas < 1000; ++commas) {
        const std::string text = "x" + std::string(commas, ',');
        CsvLine line;
        line.Split(text);
        EXPECT_EQ(line.FieldCount(), commas + 1);
    }
}

TEST(TextFields, keepTheFirstFieldsLength) {
    CsvLine line;
    line.Split("\"a,b\",c");
    EXPECT_EQ(line.First().size(), 3U);
    line.Split("Ruler,1");
    EXPECT_EQ(line.First(), "Ruler");
}

} // namespace
