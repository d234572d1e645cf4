#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

/// Why a copy is kept.
enum class KeptReason : std::uint8_t {
    Unsaved,      ///< paths of the canvas that were not saved when their track was left
    Unsent,       ///< a saved track of a workspace that was neither synced nor packed
    Deleted,      ///< a track before its deletion
    Replaced,     ///< a file before another one takes its place
    Crash,        ///< unsaved paths of a run that crashed
    TextOriginal, ///< a text track before a binary one takes its place
};

/// The word for the reason in a copy's name.
std::string_view WordOf(KeptReason reason);

/// The name of a kept copy: "2026-11-22 14.03.12 cover.trk (unsaved).trk", in which the time is local, the
/// original's name comes next, then the reason, and at last the original's extension, so that the copy opens
/// as the original does.
///
/// Whatever the original's name, this is a valid file name of valid UTF-8 on one line: control characters and
/// invalid bytes are replaced, and a long name is truncated between two characters.
class KeptName final {
  public:
    /// @param original the original's name, or its path
    KeptName(std::time_t time, const std::string& original, KeptReason reason);

    /// Gives the copy another extension than the original's, such as ".csv".
    void SetExtension(std::string_view other) { extension = other; }

    /// @param number counts the copies of one second and name, from 1; further ones have it in the
    /// parentheses: "(unsaved 2)"
    [[nodiscard]] std::string Text(unsigned number = 1) const;

    /// Whether a file is named like a kept copy.
    [[nodiscard]] static bool IsOne(std::string_view name);
    /// The time in the name of a kept copy, as text that sorts by time.
    [[nodiscard]] static std::string_view TimeOf(std::string_view name);

  private:
    std::string time;
    std::string original;
    std::string reason;
    std::string extension; ///< with its dot; empty for none
};
