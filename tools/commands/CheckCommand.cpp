#include "tools/commands/Commands.h"

#include "tools/commandline/Output.h"
#include "tools/track/LoadedTrack.h"
#include "tools/track/TrackCheck.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

const char* SeverityName(TrackProblem::Severity severity) {
    return severity == TrackProblem::Severity::Error ? "error" : "warning";
}

std::string Json(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

/// Writes the problems of one track as they are found, since there may be millions.
class Report {
  public:
    Report(TextOutput& output, const std::string& file, bool json) : output(output), file(file), json(json) {
        if (json) {
            const std::string name = Json({{QStringLiteral("file"), QString::fromStdString(file)}});
            output.Write(name.substr(0, name.size() - 1) + ",\"problems\":[");
        }
    }

    void Take(const TrackProblem& problem) {
        output.Write(json ? Machine(problem) : Readable(problem));
        ++(problem.severity == TrackProblem::Severity::Error ? errors : warnings);
    }

    /// @param strict whether warnings count as errors
    [[nodiscard]] ExitCode Finish(bool strict) {
        if (json)
            output.Write("],\"errors\":" + std::to_string(errors) +
                         ",\"warnings\":" + std::to_string(warnings) + "}\n");
        else if (errors == 0)
            output.Write(file + ": good" + WithWarnings() + '\n');
        return errors > 0 || (strict && warnings > 0) ? ExitCode::Found : ExitCode::Done;
    }

  private:
    [[nodiscard]] std::string WithWarnings() const {
        if (warnings == 0)
            return {};
        return ", with " + std::to_string(warnings) + (warnings == 1 ? " warning" : " warnings");
    }

    [[nodiscard]] std::string Readable(const TrackProblem& problem) const {
        return file + ": " + problem.Place() + SeverityName(problem.severity) + ": " + problem.text + '\n';
    }

    [[nodiscard]] std::string Machine(const TrackProblem& problem) const {
        QJsonObject object = problem.ToJson();
        object.insert(QStringLiteral("severity"), QLatin1String(SeverityName(problem.severity)));
        return (errors + warnings == 0 ? "" : ",") + Json(object);
    }

    TextOutput& output;
    std::string file;
    bool json;
    std::int64_t errors = 0;
    std::int64_t warnings = 0;
};

} // namespace

CommandText CheckCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("check");
    text.summary = QStringLiteral("Report every problem of track files, with its line or byte offset");
    text.arguments = QStringLiteral("TRACK...");
    text.max = -1;
    text.details = QStringLiteral(
        "An error prevents the editor from opening the file; a warning is content that the editor reads,\n"
        "but that is probably a mistake. Lines of text tracks are counted from 1, bytes of binary\n"
        "tracks from 0.\n");
    text.found = QStringLiteral("a file has an error; with --strict also when it has a warning");
    text.options = {
        Switch(QStringLiteral("strict"), QStringLiteral("count warnings like errors")),
        Switch(QStringLiteral("json"), QStringLiteral("print a JSON object on a line for each track"))};
    return text;
}

ExitCode CheckCommand::Run(const Arguments& arguments) const {
    TextOutput output;
    const ExitCode code = ForEachFile("check", arguments.Words(), [&](const std::string& file) {
        RequireFile(file);
        Report report(output, file, arguments.Has("json"));
        CheckTrack(file, [&report](const TrackProblem& problem) { report.Take(problem); });
        return report.Finish(arguments.Has("strict"));
    });
    output.Finish();
    return code;
}
