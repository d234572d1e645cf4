#include "basalt/ProcessStart.h"
#include "basalt/SystemCalls.h"
#include "log/Log.h"
#include "tools/commandline/CommandLine.h"
#include "tools/commands/Commands.h"

#include <QStringList>

namespace {

Commands AllCommands() {
    Commands commands;
    commands.push_back(std::make_unique<InfoCommand>());
    commands.push_back(std::make_unique<CheckCommand>());
    commands.push_back(std::make_unique<RenderCommand>());
    commands.push_back(std::make_unique<DiffCommand>());
    commands.push_back(std::make_unique<PathsExportCommand>());
    commands.push_back(std::make_unique<PathsImportCommand>());
    commands.push_back(std::make_unique<ConvertCommand>());
    commands.push_back(std::make_unique<ProfileCommand>());
    commands.push_back(std::make_unique<ListCommand>());
    commands.push_back(std::make_unique<VerifyCommand>());
    commands.push_back(std::make_unique<ExtractCommand>());
    commands.push_back(std::make_unique<ReplaceCommand>());
    return commands;
}

} // namespace

int main(int argc, char** argv) {
    KeepBytesOfOutput();
    Output2FILE::Target() = nullptr; // the commands report the converters' errors themselves
    QStringList arguments;
    for (const std::string& word : CommandLineWords(argc, argv))
        arguments.append(QString::fromStdString(word)); // file names are in UTF-8, as in the editor
    return CommandLine(AllCommands()).Run(arguments);
}
