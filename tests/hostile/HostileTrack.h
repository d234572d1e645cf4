#pragma once

#include <string>
#include <vector>

/// What one operation does with a hostile file: its result, and how its ERROR line begins.
struct Outcome {
    int result = 0;
    std::string line; ///< empty: there is no ERROR line
    bool asked = true;

    /// The operation succeeds without a word.
    static Outcome Good() { return {}; }
    /// The operation fails and says why.
    static Outcome Fails(const std::string& line) { return {1, line}; }
    /// The operation fails without a line of its own.
    static Outcome FailsSilently() { return {1, ""}; }
    /// Nobody asks any more: an operation before it has failed. Whatever it answers, it must answer.
    static Outcome Unasked() { return {0, "", false}; }
};

/// A track file with one defect, named after it, and what must happen when it is read. The window shows what
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
