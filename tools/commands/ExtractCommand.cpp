#include "tools/commands/Commands.h"

#include "basalt/FilePath.h"
#include "basalt/bDirectory.h"
#include "tools/backup/BackupFile.h"
#include "tools/backup/BackupWalk.h"
#include "tools/commandline/Output.h"

#include <QTemporaryDir>

#include <cstdio>
#include <map>

namespace {

/// The target path of each file, by its name in the workspace.
using Targets = std::map<std::string, std::string>;

Targets TargetsFor(const std::vector<std::string>& words, const std::string& output) {
    Targets targets;
    const bool isFolder = bDirectory_Exists(output.c_str()) != 0;
    if (words.size() > 2 && !isFolder)
        throw Failure(ExitCode::Unwritable, output + ": not a folder, which several files need");
    const std::string start = output.ends_with('/') ? output : output + "/";
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string name = WorkspaceName(words[i]);
        targets[name] = isFolder ? start + NameOf(name) : output;
    }
    return targets;
}

Failure NotInWorkspace(const std::string& backup, const std::string& name) {
    return {ExitCode::Unreadable, backup + ": no " + name + " in the workspace"};
}

/// @return the hard links among the files, by what they are copies of: an earlier file of the archive
std::multimap<std::string, std::string> ExtractBytes(const std::string& backup, const Targets& targets) {
    Progress progress("Reading " + backup);
    const bOwned<bFile> file = OpenWithProgress(backup, progress);
    Targets missing = targets;
    std::multimap<std::string, std::string> links;
    try {
        WalkBackup(file.get(), [&](const BackupEntry& entry, const EntryContent& content) {
            const auto target = targets.find(entry.name);
            if (!entry.isInWorkspace || entry.isFolder || target == targets.end())
                return;
            missing.erase(entry.name);
            if (!entry.copyOf.empty()) {
                links.emplace(entry.copyOf, target->second);
                return;
            }
            TextOutput output(target->second);
            for (std::string_view block; content.Next(&block);)
                output.Write(block);
            output.Finish();
        });
    } catch (const BackupDamage& damage) {
        if (!missing.empty())
            throw Failure(ExitCode::Unreadable, backup + ": " + damage.what());
        std::fprintf(stderr,
                     "corvane-track extract: warning: %s: %s; the requested files precede the damage\n",
                     backup.c_str(), damage.what());
    }
    if (!missing.empty())
        throw NotInWorkspace(backup, missing.begin()->first);
    return links;
}

void ExtractFiles(const std::string& backup, const Targets& targets) {
    for (const auto& [original, target] : ExtractBytes(backup, targets))
        if (!ExtractBytes(backup, {{original, target}}).empty())
            throw NotInWorkspace(backup, original);
}

void ExtractAll(const std::string& backup, const std::string& folder) {
    FileFacts facts;
    if (!AskPathItself(folder, &facts))
        throw Failure(ExitCode::Unwritable, folder + ": exists already");
    const QTemporaryDir scratch(QString::fromStdString(folder) + QStringLiteral("-XXXXXX"));
    if (!scratch.isValid())
        throw Failure(ExitCode::Unwritable, folder + ": " + scratch.errorString().toStdString());
    const std::string outer = scratch.filePath(QStringLiteral("backup")).toStdString();
    Progress progress("Reading " + backup);
    UnpackInto(backup, outer, progress);
    progress.Begin("Unpacking the workspace");
    UnpackInto(outer + "/" + kWorkspaceArchive, folder, progress);
}

} // namespace

CommandText ExtractCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("extract");
    text.summary = QStringLiteral("Take files out of the workspace in a backup");
    text.arguments = QStringLiteral("BACKUP [FILE...]");
    text.max = -1;
    text.details = QStringLiteral(
        "A FILE is named as \"list\" shows it; one without a slash is a track in vdk/ContourPath. It is\n"
        "written into the current folder, or to what --output names: a folder that exists, or for a\n"
        "single FILE the name of the new file. With --all the complete workspace is unpacked into the new\n"
        "folder that --output names.\n");
    text.options = {OutputOption(QStringLiteral("where to (default: the current folder)")),
                    Switch(QStringLiteral("all"), QStringLiteral("unpack the complete workspace"))};
    return text;
}

ExitCode ExtractCommand::Run(const Arguments& arguments) const {
    const std::vector<std::string>& words = arguments.Words();
    const std::optional<std::string> output = arguments.Text("output");
    if (arguments.Has("all") ? words.size() > 1 : words.size() < 2)
        throw Failure(ExitCode::Misused, "name the files, or give --all alone");
    if (arguments.Has("all") && !output)
        throw Failure(ExitCode::Misused, "--all needs a new folder as --output");
    if (arguments.Has("all"))
        ExtractAll(words[0], *output);
    else
        ExtractFiles(words[0], TargetsFor(words, output.value_or(".")));
    return ExitCode::Done;
}
