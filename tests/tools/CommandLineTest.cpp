#include "ToolRun.h"

#include "SmallTrack.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QProcess>

#include <iterator>
#include <sstream>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class CommandLine : public testing::Test {
  protected:
    TemporaryFolder folder;
};

/// "paths export" as two words.
std::vector<std::string> WordsOf(const std::string& command) {
    std::istringstream text(command);
    return {std::istream_iterator<std::string>(text), std::istream_iterator<std::string>()};
}

/// What bash offers after these words, the last one being completed.
std::vector<std::string> Completions(const std::vector<std::string>& words) {
    WriteFile("completion", RunTrackTool({"completion"}).output);
    std::string script = "source ./completion; COMP_WORDS=(";
    for (const std::string& word : words)
        script += "'" + word + "' ";
    script += "); COMP_CWORD=" + std::to_string(words.size() - 1) +
              "; _corvane_track; printf '%s\\n' \"${COMPREPLY[@]}\"";
    QProcess bash;
    bash.start(QStringLiteral("bash"), {QStringLiteral("-c"), QString::fromStdString(script)});
    bash.waitForFinished(-1);
    EXPECT_EQ(bash.readAllStandardError().toStdString(), "");
    ToolResult result;
    result.output = bash.readAllStandardOutput().toStdString();
    return result.Lines();
}

const std::vector<std::string> kCommands = {"info",         "check",        "render",  "diff",
                                            "paths export", "paths import", "convert", "profile",
                                            "list",         "verify",       "extract", "replace"};

TEST_F(CommandLine, listsEveryCommandAndExitCodeInTheHelp) {
    const ToolResult help = RunTrackTool({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.errors, "");
    for (const std::string& command : kCommands)
        EXPECT_THAT(help.output, HasSubstr("\n  " + command + " "));
    for (const char code : {'0', '1', '2', '3', '4'})
        EXPECT_THAT(help.output, HasSubstr(std::string("\n  ") + code + "  "));
    EXPECT_EQ(RunTrackTool({"help"}).output, help.output);
    EXPECT_EQ(RunTrackTool({"-h"}).output, help.output);
}

TEST_F(CommandLine, hasHelpForEveryCommand) {
    for (const std::string& command : kCommands) {
        SCOPED_TRACE(command);
        std::vector<std::string> words = WordsOf(command);
        words.emplace_back("--help");
        const ToolResult help = RunTrackTool(words);
        EXPECT_EQ(help.code, 0);
        EXPECT_THAT(help.output, StartsWith("Usage: corvane-track " + command + " [OPTION...] "));
        for (const std::string& line : help.Lines())
            EXPECT_LE(line.size(), 100U) << line;
    }
}

TEST_F(CommandLine, printsTheProjectsVersion) {
    EXPECT_EQ(RunTrackTool({"--version"}).output, "corvane-track " CORVANE_VERSION "\n");
}

TEST_F(CommandLine, endsWith2ForInvalidArguments) {
    const ToolResult nothing = RunTrackTool({});
    EXPECT_EQ(nothing.code, 2);
    EXPECT_EQ(nothing.errors, "corvane-track: no command\nSee corvane-track --help.\n");
    const ToolResult command = RunTrackTool({"inform", "a.trk"});
    EXPECT_EQ(command.code, 2);
    EXPECT_THAT(command.errors, StartsWith("corvane-track: unknown command 'inform"));
    const ToolResult option = RunTrackTool({"info", "--jason", "a.trk"});
    EXPECT_EQ(option.code, 2);
    EXPECT_THAT(option.errors, AllOf(StartsWith("corvane-track info: "), HasSubstr("jason"),
                                     HasSubstr("\nSee corvane-track info --help.\n")));
    const ToolResult few = RunTrackTool({"info"});
    EXPECT_EQ(few.code, 2);
    EXPECT_THAT(few.errors, StartsWith("corvane-track info: too few arguments\n"));
    EXPECT_EQ(nothing.output + command.output + option.output + few.output, "");
}

TEST_F(CommandLine, acceptsAFileNamedLikeAnOptionAfterTwoDashes) {
    WriteFile("--help", BinaryFile(SmallTrack()));
    EXPECT_EQ(RunTrackTool({"check", "--", "--help"}).output, "--help: good\n");
}

TEST_F(CommandLine, endsWith4WhenStandardOutputIsFull) {
    WriteFile("a.trk", BinaryFile(SmallTrack()));
    QProcess process;
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start(QString::fromStdString(ToolProgram()), {QStringLiteral("info"), QStringLiteral("a.trk")});
    process.waitForFinished(-1);
    EXPECT_EQ(process.exitCode(), 4);
    EXPECT_EQ(process.readAllStandardError().toStdString(),
              "corvane-track info: standard output: No space left on device\n");
}

TEST_F(CommandLine, completesCommandsOptionsAndFilesInBash) {
    WriteFile("part.trk", "");
    EXPECT_THAT(Completions({"corvane-track", "in"}), ElementsAre("info"));
    EXPECT_THAT(Completions({"corvane-track", "check", "--"}), ElementsAre("--strict", "--json", "--help"));
    EXPECT_THAT(Completions({"corvane-track", "check", "--json", "pa"}), ElementsAre("part.trk"));
}

TEST_F(CommandLine, completesEveryCommandInBash) {
    for (const std::string& command : kCommands) {
        SCOPED_TRACE(command);
        std::vector<std::string> words = WordsOf(command);
        words.insert(words.begin(), "corvane-track");
        EXPECT_THAT(Completions(words), ElementsAre(words.back()));
        words.emplace_back("--he");
        EXPECT_THAT(Completions(words), ElementsAre("--help"));
    }
}

} // namespace
