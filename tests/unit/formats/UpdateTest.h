#pragma once

#include "DocumentSamples.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Updates the paths of files in a temporary folder, by one of the converters.
template<typename ConverterOfFormat>
class UpdateTest : public testing::Test {
  protected:
    static constexpr int kOriginalNotReadable = 1;
    static constexpr int kTargetNotWritable = 2;

    int Update(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths) {
        return UpdateWith(converter, original, target, paths);
    }

    /// Updates a file of this content and returns the target's content.
    std::string Updated(const std::string& original, const std::vector<TrackPath>& paths) {
        WriteFile("original.trk", original);
        EXPECT_EQ(Update("original.trk", "target.trk", paths), 0);
        return FileContent("target.trk");
    }

    TemporaryFolder folder;
    LogCapture log;
    ConverterOfFormat converter;
};
