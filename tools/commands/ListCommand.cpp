#include "tools/commands/Commands.h"

#include "cinder/TarName.h"
#include "tools/backup/BackupFile.h"
#include "tools/backup/BackupWalk.h"
#include "tools/commandline/Output.h"

namespace {

std::string Readable(const BackupEntry& entry) {
    constexpr std::size_t kSizeWidth = 12;
    const std::string size = entry.isFolder ? std::string() : std::to_string(entry.size);
    return std::string(kSizeWidth - std::min(kSizeWidth, size.size()), ' ') + size +
           (entry.isInWorkspace ? "    " : "  ") + PrintableTarName(entry.name) +
           (entry.isFolder ? "/" : "") +
           (entry.copyOf.empty() ? "" : " = " + PrintableTarName(entry.copyOf)) + '\n';
}

QJsonObject Machine(const BackupEntry& entry) {
    QJsonObject machine{{QStringLiteral("name"), QString::fromStdString(entry.name)},
                        {QStringLiteral("inWorkspace"), entry.isInWorkspace},
                        {QStringLiteral("folder"), entry.isFolder},
                        {QStringLiteral("size"), static_cast<qint64>(entry.size)},
                        {QStringLiteral("permissions"), static_cast<int>(entry.permissions)}};
    if (!entry.copyOf.empty())
        machine[QStringLiteral("copyOf")] = QString::fromStdString(entry.copyOf);
    return machine;
}

} // namespace

CommandText ListCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("list");
    text.summary = QStringLiteral("List the files in a backup");
    text.arguments = QStringLiteral("BACKUP");
    text.details = QStringLiteral(
        "The files of the workspace follow workspaces/Workspace.osws, the archive that holds them, and\n"
        "are indented. Sizes are in bytes. A hard link is followed by \"=\" and\n"
        "the file that it is a copy of. Other links and special files, which are never unpacked, are\n"
        "not listed.\n");
    text.options = {Switch(QStringLiteral("json"),
                           QStringLiteral("print a JSON object on a line for each file and folder"))};
    return text;
}

ExitCode ListCommand::Run(const Arguments& arguments) const {
    const std::string& backup = arguments.Words()[0];
    const bool json = arguments.Has("json");
    TextOutput output;
    try {
        Progress progress("Reading " + backup);
        const bOwned<bFile> file = OpenWithProgress(backup, progress);
        WalkBackup(file.get(), [&](const BackupEntry& entry, const EntryContent& /*content*/) {
            output.Write(json ? JsonLine(Machine(entry)) : Readable(entry));
        });
    } catch (const BackupDamage& damage) {
        output.Finish(); // what comes before the damage
        throw Failure(ExitCode::Unreadable, backup + ": " + damage.what());
    }
    output.Finish();
    return ExitCode::Done;
}
