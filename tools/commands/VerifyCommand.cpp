#include "tools/commands/Commands.h"

#include "tools/backup/BackupCheck.h"
#include "tools/commandline/Output.h"

#include <QJsonArray>

namespace {

std::string Readable(const BackupProblem& found) {
    return (found.entry.empty() ? "" : found.entry + ": ") + found.problem.Place() + found.problem.text;
}

QJsonObject Machine(const BackupProblem& found) {
    QJsonObject object = found.problem.ToJson();
    if (!found.entry.empty())
        object.insert(QStringLiteral("entry"), QString::fromStdString(found.entry));
    return object;
}

ExitCode Verify(const std::string& backup, bool json, TextOutput& output) {
    std::vector<BackupProblem> problems;
    BackupCounts counts;
    {
        Progress progress("Reading " + backup);
        counts =
            CheckBackup(backup, progress, [&](const BackupProblem& problem) { problems.push_back(problem); });
    }
    if (json) {
        QJsonArray list;
        for (const BackupProblem& problem : problems)
            list.append(Machine(problem));
        output.Write(JsonLine({{QStringLiteral("file"), QString::fromStdString(backup)},
                               {QStringLiteral("good"), problems.empty()},
                               {QStringLiteral("files"), static_cast<qint64>(counts.files)},
                               {QStringLiteral("tracks"), static_cast<qint64>(counts.tracks)},
                               {QStringLiteral("problems"), list}}));
    } else if (problems.empty()) {
        output.Write(backup + ": good, with " + std::to_string(counts.files) + " files, " +
                     std::to_string(counts.tracks) + " of them tracks\n");
    }
    for (const BackupProblem& problem : problems)
        if (!json)
            output.Write(backup + ": " + Readable(problem) + '\n');
    return problems.empty() ? ExitCode::Done : ExitCode::Found;
}

} // namespace

CommandText VerifyCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("verify");
    text.summary = QStringLiteral("Read backups to their end and report damage and broken tracks");
    text.arguments = QStringLiteral("BACKUP...");
    text.max = -1;
    text.details = QStringLiteral(
        "Finds archives that are damaged or cut short, links and unsafe names, which are not unpacked,\n"
        "a missing workspace, and the errors of every track in vdk/ContourPath. The backup is unpacked\n"
        "into the folder for temporary files meanwhile.\n");
    text.found = QStringLiteral("a backup is not good");
    text.options = {
        Switch(QStringLiteral("json"), QStringLiteral("print a JSON object on a line for each backup"))};
    return text;
}

ExitCode VerifyCommand::Run(const Arguments& arguments) const {
    TextOutput output;
    const ExitCode code = ForEachFile("verify", arguments.Words(), [&](const std::string& backup) {
        return Verify(backup, arguments.Has("json"), output);
    });
    output.Finish();
    return code;
}
