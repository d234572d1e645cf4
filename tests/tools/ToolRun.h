#pragma once

#include <QJsonObject>

#include <string>
#include <vector>

/// The exit code and the output of a run of corvane-track.
struct ToolResult {
    int code = -1; ///< -1 when it crashed
    std::string output;
    std::string errors;

    /// The output's lines.
    [[nodiscard]] std::vector<std::string> Lines() const;
    /// The output's lines as JSON objects; empty for a line that is not one.
    [[nodiscard]] std::vector<QJsonObject> Objects() const;
};

/// The path of the built program.
std::string ToolProgram();

/// Runs the built program in the current directory, and waits for its end.
ToolResult RunTrackTool(const std::vector<std::string>& words);
