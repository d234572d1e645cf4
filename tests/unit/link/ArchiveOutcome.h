#pragma once

#include "TemporaryFolder.h"
#include "basalt/Exception.h"
#include "basalt/bObject.h"
#include "basalt/bStatus.h"
#include "cinder/UnpackFolder.h"
#include "link/FileUtils.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

/// The outcome of packing or unpacking: status, message and function of its failure, or `success`.
inline std::string OutcomeOf(const std::function<void()>& action, const std::string& success) {
    try {
        action();
        return success;
    } catch (const Ve::Exception& failure) {
        EXPECT_NE(failure.Line(), 0);
        EXPECT_THAT(failure.File(), testing::HasSubstr("FileUtils.cpp"));
        return std::to_string(failure.Status()) + " " + failure.what() + " in " + failure.Function();
    }
}

inline std::string UnpackOutcome(const std::string& archive, const std::string& target,
                                 bAlloc allocator = bAlloc_Application()) {
    return OutcomeOf([&] { TarUncompress(archive, target, allocator); }, "unpacked");
}

/// Unpacks these bytes into "out".
inline std::string UnpackingOf(const std::string& archive) {
    WriteFile("in.tar", archive);
    return UnpackOutcome("in.tar", "out");
}

inline std::string UnpackingFailure(bStatus status, const std::string& message) {
    return std::to_string(status) + " " + message + " in TarUncompress";
}

/// The outcome of strictly unpacking these bytes.
inline std::string StrictStatus(const std::string& archive) {
    WriteFile("strict.tar", archive);
    try {
        UnpackFolderStrictly("strict.tar", "strict", bAlloc_Application());
        return "unpacked";
    } catch (const Ve::Exception& failure) {
        return std::to_string(failure.Status()) + " " + failure.what();
    }
}
