#pragma once

#include <QJsonObject>

#include <string>
#include <vector>

/// How a run of corvane-track ended, and what it wrote.
struct ToolResult {
    int code = -1; ///< -1 when it crashed
    std::string output;
    std::string errors;

    /// The output's lines.
    [[nodiscard]] std::vector<std::string> Lines() const;
    /// The output's lines as JSON objects; empty ones where a line is none.
    [[nodiscard]] std::vector<QJsonObject> Objects() const;
};

/// The path of the built program.
std::string ToolProgram();

/// Runs the built program in the current directory, and waits for its end.
ToolResult RunTrackTool(const std::vector<std::string>& words);
