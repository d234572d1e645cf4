#include "document/formats/NumberText.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace {

using Parts = std::optional<std::pair<std::int32_t, std::uint32_t>>;

/// The digits and the number of decimals, only when the complete field is read.
Parts PartsOf(const std::string& field, std::uint32_t pattern) {
    const std::string text = field + ",12345678";
    PackedDecimal decimal{77, pattern};
    const char* const end = PackedDecimal::Read(text.data(), decimal);
    if (end == nullptr) {
        EXPECT_EQ(decimal.digits, 77) << field;
        EXPECT_EQ(decimal.fraction, pattern) << field;
        return {};
    }
    EXPECT_EQ(end, text.data() + field.size()) << field;
    return std::pair(decimal.digits, decimal.fraction);
}

class PackedDecimals : public testing::TestWithParam<std::uint32_t> {};

TEST_P(PackedDecimals, areReadWithTheirDigits) {
    const std::pair<const char*, std::pair<std::int32_t, std::uint32_t>> fields[] = {
        {"0", {0, 0}},
        {"7", {7, 0}},
        {"1234567", {1234567, 0}},
        {"-123456", {-123456, 0}},
        {"12.34", {1234, 2}},
        {"-12.34", {-1234, 2}},
        {".5", {5, 1}},
        {"-.5", {-5, 1}},
        {".123456", {123456, 6}},
        {"1.23456", {123456, 5}},
        {"12345.6", {123456, 1}},
        {"0.00", {0, 2}},
        {"000.1", {1, 1}}};
    for (const auto& [field, parts] : fields)
        EXPECT_EQ(PartsOf(field, GetParam()), Parts(parts)) << field;
}

TEST_P(PackedDecimals, rejectEverythingElse) {
    for (const char* const field :
         {"",      "-",    ".",    "-.",       "--1",      "1-",    "-0",        "-0.00",       "5.",
          "1.2.3", "1..2", "..1",  "+1",       " 1",       "1 ",    "1e5",       "0x1",         "nan",
          "1/2",   "1:2",  "12;5", "12345678", "-1234567", "1\xb1", "1\x80\x32", "\xae\x31\x32"})
        EXPECT_EQ(PartsOf(field, GetParam()), Parts()) << field;
}

INSTANTIATE_TEST_SUITE_P(WhateverTheFieldBefore, PackedDecimals,
                         testing::Range(0U, PackedDecimal::kFractions));

TEST(PackedDecimal, isTheNearestDouble) {
    EXPECT_EQ((PackedDecimal{1, 1}.Value()), 0.1);
    EXPECT_EQ((PackedDecimal{-123456, 6}.Value()), -0.123456);
    EXPECT_EQ((PackedDecimal{9999999, 0}.Value()), 9999999.0);
}

TEST(PackedDecimal, isNotReadWithoutAComma) {
    PackedDecimal decimal;
    EXPECT_EQ(PackedDecimal::Read("12.34567", decimal), nullptr);
}

} // namespace
