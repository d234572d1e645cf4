#pragma once

#include "samples/TrackFileWriter.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

/// What the command line asks for.
struct SampleRequest {
    enum class Task { Help, Track, Workspace };

    Task task = Task::Help;
    std::string path;
    MachinedPart::Kind kind = MachinedPart::Kind::Groove;
    int width = 300;
    int height = 200;
    std::uint32_t seed = 1;
    SampleOptions options;
};

/// An argument that is not understood; the message names it.
class BadArgument : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// @param arguments without the program's name
/// @throw BadArgument
SampleRequest ReadSampleRequest(const std::vector<std::string>& arguments);
