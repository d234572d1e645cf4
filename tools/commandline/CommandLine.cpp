#include "tools/commandline/CommandLine.h"

#include "tools/commandline/HelpText.h"
#include "tools/commandline/Output.h"

#include <cstdio>
#include <exception>

namespace {

bool AsksForHelp(const QStringList& words) {
    const int end = words.indexOf(QStringLiteral("--"));
    const QStringList options = words.mid(0, end);
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

ExitCode Print(const QString& text) {
    TextOutput output;
    output.Write(text.toStdString());
    output.Finish();
    return ExitCode::Done;
}

void Report(const QString& command, const std::exception& failure) {
    const std::string name = command.isEmpty() ? "corvane-track" : "corvane-track " + command.toStdString();
    std::fprintf(stderr, "%s: %s\n", name.c_str(), failure.what());
}

ExitCode RunCommand(const Command& command, const QStringList& words) {
    const CommandText text = command.Text();
    try {
        return AsksForHelp(words) ? Print(HelpOf(text))
                                  : command.Run(Arguments(words, text.options, text.min, text.max));
    } catch (const Failure& failure) {
        Report(text.name, failure);
        if (failure.Code() == ExitCode::Misused)
            std::fprintf(stderr, "See corvane-track %s --help.\n", text.name.toUtf8().constData());
        return failure.Code();
    }
}

} // namespace

int CommandLine::Run(const QStringList& arguments) const {
    try {
        return static_cast<int>(RunNamed(arguments));
    } catch (const Failure& failure) {
        Report({}, failure);
        return static_cast<int>(failure.Code());
    } catch (const std::exception& failure) { // for example std::bad_alloc
        Report({}, failure);
        return static_cast<int>(ExitCode::Unreadable);
    }
}

ExitCode CommandLine::RunNamed(const QStringList& arguments) const {
    for (const auto& command : commands) {
        const QStringList name = command->Text().name.split(QLatin1Char(' '));
        if (arguments.mid(0, name.size()) == name)
            return RunCommand(*command, arguments.mid(name.size()));
    }
    const QString first = arguments.value(0);
    if (first == QLatin1String("completion"))
        return Print(CompletionScriptFor(commands));
    if (first == QLatin1String("--version"))
        return Print(QStringLiteral("corvane-track " CORVANE_VERSION "\n"));
    if (first == QLatin1String("help") || AsksForHelp(arguments))
        return Print(OverviewOf(commands));
    const std::string complaint =
        first.isEmpty() ? "no command"
                        : "unknown command '" + arguments.join(QLatin1Char(' ')).toStdString() + "'";
    throw Failure(ExitCode::Misused, complaint + "\nSee corvane-track --help.");
}
