#include "ToolRun.h"

#include <QJsonDocument>
#include <QProcess>

#include <cstdlib>
#include <sstream>

std::vector<std::string> ToolResult::Lines() const {
    std::vector<std::string> lines;
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::vector<QJsonObject> ToolResult::Objects() const {
    std::vector<QJsonObject> objects;
    for (const std::string& line : Lines())
        objects.push_back(QJsonDocument::fromJson(QByteArray::fromStdString(line)).object());
    return objects;
}

std::string ToolProgram() {
    const char* const other = std::getenv("CORVANE_TRACK_PROGRAM");
    return other != nullptr ? other : CORVANE_TRACK_PROGRAM;
}

ToolResult RunTrackTool(const std::vector<std::string>& words) {
    QStringList arguments;
    for (const std::string& word : words)
        arguments.append(QString::fromStdString(word));
    QProcess process;
    process.start(QString::fromStdString(ToolProgram()), arguments);
    process.waitForFinished(-1); // ctest has the time limit
    ToolResult result;
    if (process.exitStatus() == QProcess::NormalExit && process.error() == QProcess::UnknownError)
        result.code = process.exitCode();
    result.output = process.readAllStandardOutput().toStdString();
    result.errors = process.readAllStandardError().toStdString();
    return result;
}
