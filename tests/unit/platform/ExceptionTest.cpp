#include "basalt/Exception.h"

#include <gtest/gtest.h>

namespace {

TEST(Exception, holdsItsOriginAndMessage) {
    const Ve::Exception failure(42, "file.cpp", -984, "Function", "%s is %d of %s", "One", 2, "three");
    EXPECT_EQ(failure.Status(), -984);
    EXPECT_EQ(failure.Line(), 42);
    EXPECT_EQ(failure.File(), "file.cpp");
    EXPECT_EQ(failure.Function(), "Function");
    EXPECT_STREQ(failure.what(), "One is 2 of three");
}

TEST(Exception, keepsForeignTextUnchangedAndComplete) {
    const std::string text = std::string(100'000, 'x') + "%s%n ü";
    EXPECT_EQ(Ve::Exception(1, "f", -1, "g", "%s", text.c_str()).what(), text);
    EXPECT_STREQ(Ve::Exception(1, "f", -1, "g", "%s", "").what(), "");
}

TEST(Exception, hasTheStatusOfSuccessByDefault) {
    EXPECT_EQ(Ve::Exception().Status(), 1);
    EXPECT_STREQ(Ve::Exception().what(), "");
    EXPECT_EQ(Ve::Exception(-998).Status(), -998);
    EXPECT_STREQ(Ve::Exception(-998).what(), "");
}

TEST(Exception, canBeCopied) {
    Ve::Exception copy;
    {
        const Ve::Exception failure(7, "file.cpp", -988, "Function", "Sensor is not connected.");
        copy = failure;
    }
    EXPECT_EQ(copy.Status(), -988);
    EXPECT_EQ(copy.Line(), 7);
    EXPECT_EQ(copy.File(), "file.cpp");
    EXPECT_EQ(copy.Function(), "Function");
    EXPECT_STREQ(copy.what(), "Sensor is not connected.");
}

} // namespace
