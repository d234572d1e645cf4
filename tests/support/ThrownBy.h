#pragma once

#include "basalt/Exception.h"

#include <gtest/gtest.h>

#include <functional>

/// The exception that `call` throws; without one the test fails and a success is returned.
inline Ve::Exception ThrownBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const Ve::Exception& e) {
        return e;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Ve::Exception(1);
}

/// Checks status, function name and message of what `call` throws.
inline void ExpectThrown(const std::function<void()>& call, int status, const std::string& function,
                         const std::string& message) {
    const Ve::Exception e = ThrownBy(call);
    EXPECT_EQ(e.Status(), status);
    EXPECT_EQ(e.Function(), function);
    EXPECT_STREQ(e.what(), message.c_str());
}
