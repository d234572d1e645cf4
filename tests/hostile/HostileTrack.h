#pragma once

#include <string>
#include <vector>

/// The outcome of one operation on a hostile file: its result, and the start of its ERROR line.
struct Outcome {
    int result = 0;
    std::string line; ///< empty: there is no ERROR line
    bool asked = true;

    /// The operation succeeds without an ERROR line.
    static Outcome Good() { return {}; }
    /// The operation fails with an ERROR line.
    static Outcome Fails(const std::string& line) { return {1, line}; }
    /// The operation fails without an ERROR line.
    static Outcome FailsSilently() { return {1, ""}; }
    /// The operation is not needed: an earlier one has failed. It must return with any result.
    static Outcome Unasked() { return {0, "", false}; }
};

/// A track file with one defect, named after it, and the required outcome of reading it. The window's message
/// follows from the outcomes: the first operation that fails ends the loading with its own message.
struct HostileTrack {
    std::string name;
    std::string content;
    Outcome info;
    Outcome image;
    Outcome map; ///< in the text encoding
    Outcome paths;

    /// The text of the window's "Error" box; empty when the track loads.
    [[nodiscard]] std::string Box() const;
};

std::vector<HostileTrack> HostileTextTracks();
std::vector<HostileTrack> HostileBinaryTracks();
