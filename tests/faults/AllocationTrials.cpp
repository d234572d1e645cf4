#include "AllocationTrials.h"

#include "Allocations.h"
#include "OperatorFiles.h"
#include "TemporaryFolder.h"
#include "basalt/AtomicFile.h"
#include "basalt/Exception.h"
#include "canvas/qmaskwidget.h"
#include "document/formats/Converter.h"
#include "document/formats/TrackInfo.h"
#include "workflow/WorkingFiles.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <new>
#include <stdexcept>

#include <QImage>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int kWidth = 40;
constexpr int kHeight = 20;
constexpr unsigned kTimeOut = 300; // seconds: a hang ends the process
const std::string kTracks = "./TmpDirOsws/vdk/ContourPath/";
const std::string kBackup = "./station.osbak";
constexpr const char* kErrorFile = "/errors.txt"; ///< the error output of a trial

const independent::Track& Original() {
    static const independent::Track track = OperatorTrack(kWidth, kHeight);
    return track;
}

const FileTree& Tracks() {
    static const FileTree tracks = {{"binary.trk", independent::BinaryFile(Original())},
                                    {"text.trk", independent::TextFile(Original())}};
    return tracks;
}

/// The unfinished files in a folder.
std::vector<fs::path> HiddenIn(const std::string& folder) {
    std::vector<fs::path> hidden;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing))
        if (entry.path().filename().string().rfind(".corvane-", 0) == 0)
            hidden.push_back(entry.path());
    return hidden;
}

void Require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// How an operation ended.
enum class Outcome : std::uint8_t {
    Succeeded,
    Failed, ///< with an error or an exception
    Ended,  ///< its process ended
};

/// An operation and its checks.
struct AllocationScenario {
    std::function<void()> prepare;              ///< creates the files that the operation needs
    std::function<bool()> operate;              ///< @return whether it succeeded; an exception is a failure
    std::function<void(Outcome outcome)> check; ///< @throws std::runtime_error with what is wrong
};

std::string TrackOf(const std::string& name) {
    return "./" + name;
}

bool Load(const std::string& path, QMaskWidget& canvas) {
    const auto converter = CreateConverter(path);
    TrackInfo info;
    info.minHeight = 32768;
    info.maxHeight = -32768;
    QImage image;
    canvas.resetPaths();
    return converter->ReadInfo(path, info) == 0 &&
           converter->ReadImage(path, info, info.minHeight, info.maxHeight, image) == 0 && !image.isNull() &&
           canvas.loadPaths(QString::fromStdString(path)) == 0;
}

AllocationScenario LoadScenario(const std::string& name, QMaskWidget& canvas) {
    return {[] {}, [name, &canvas] { return Load(TrackOf(name), canvas); },
            [name, &canvas](Outcome outcome) {
                Require(FileContent(TrackOf(name)) == Tracks().at(name), "loading has changed the file");
                Require(outcome != Outcome::Succeeded ||
                            (canvas.paths().size() == 1 && canvas.paths()[0].points.size() == 3),
                        "wrong paths were loaded");
            }};
}

/// The editor's way of saving in place.
bool Save(const std::string& path, QMaskWidget& canvas) {
    const independent::Track& track = Original();
    canvas.SavePath(QString::fromStdString(path), QStringLiteral("temp.trk"), track.yResolution,
                    track.xOffset, track.yOffset, track.width * track.xResolution,
                    track.height * track.yResolution);
    return !ReplaceAtomically("temp.trk", path);
}

bool IsSaved(const std::string& file) {
    try {
        return independent::ReadBinary(file).segments == Original().segments;
    } catch (const std::exception&) {
        return false;
    }
}

AllocationScenario SaveScenario(const std::string& name, QMaskWidget& canvas) {
    return {[name, &canvas] { Require(Load(TrackOf(name), canvas), "the track cannot be loaded"); },
            [name, &canvas] { return Save(TrackOf(name), canvas); },
            [name](Outcome outcome) {
                const std::string file = FileContent(TrackOf(name));
                Require(IsSaved(file) || (outcome != Outcome::Succeeded && file == Tracks().at(name)),
                        "the track is broken");
                Require(outcome == Outcome::Ended || HiddenIn(".").empty(), "a temporary file remains");
            }};
}

AllocationScenario UnpackScenario() {
    return {[] {},
            [] {
                static_cast<void>(UnpackBackup(kBackup));
                static_cast<void>(UnpackWorkspace());
                return true;
            },
            [](Outcome outcome) {
                Require(FileContent(kBackup) == BackupArchive(Tracks()), "the backup has changed");
                const FileTree unpacked = FilesIn(kTracks);
                Require(outcome != Outcome::Succeeded || unpacked == Tracks(),
                        "the unpacked files are incomplete");
                Require(outcome == Outcome::Ended || HiddenIn(kTracks).empty(), "a temporary file remains");
                for (const auto& [name, content] : unpacked)
                    Require(!LooksLikeContent(name) || content == Tracks().at(name),
                            "an unpacked file is broken");
            }};
}

AllocationScenario PackScenario() {
    return {[] {
                static_cast<void>(UnpackBackup(kBackup));
                static_cast<void>(UnpackWorkspace());
            },
            [] {
                PackBackup(kBackup);
                return true;
            },
            [](Outcome outcome) {
                Require(TracksInBackup(FileContent(kBackup)) == Tracks(), "the backup is broken");
                Require(FilesIn(kTracks) == Tracks(), "the workspace has changed");
                Require(outcome == Outcome::Ended || HiddenIn(".").empty(), "a temporary file remains");
            }};
}

AllocationScenario ScenarioOf(const std::string& name, QMaskWidget& canvas) {
    if (name == "memory-load-text")
        return LoadScenario("text.trk", canvas);
    if (name == "memory-load-binary")
        return LoadScenario("binary.trk", canvas);
    if (name == "memory-save-text")
        return SaveScenario("text.trk", canvas);
    if (name == "memory-save-binary")
        return SaveScenario("binary.trk", canvas);
    return name == "memory-pack" ? PackScenario() : UnpackScenario();
}

// Exit codes of a trial's process.
constexpr int kPassed = 0;
constexpr int kNoneFailed = 10; ///< there were fewer allocations
constexpr int kWrong = 11;

void Prepare(const AllocationScenario& scenario) {
    for (const auto& [file, content] : Tracks())
        WriteFile(file, content);
    WriteFile(kBackup, BackupArchive(Tracks()));
    scenario.prepare();
}

/// Runs the operation with one failing allocation, and again without. @return kPassed or kNoneFailed
int FailOne(const AllocationScenario& scenario, long failing) {
    Outcome outcome = Outcome::Failed;
    Prepare(scenario);
    try {
        CountAllocations(failing);
        if (scenario.operate())
            outcome = Outcome::Succeeded;
    } catch (const Ve::Exception&) {
    } catch (const std::bad_alloc&) { // the program would end here, with its files as they are
    }
    const bool failed = StopCountingAllocations() >= failing;
    scenario.check(outcome);
    Require(failed || outcome == Outcome::Succeeded, "it failed although every allocation succeeded");
    if (!failed)
        return kNoneFailed;
    Require(scenario.operate(), "it fails when repeated");
    scenario.check(Outcome::Succeeded);
    return kPassed;
}

/// Checks the files after the process ended within the operation, and runs the operation from a new start.
int CheckEnded(const AllocationScenario& scenario) {
    scenario.check(Outcome::Ended);
    for (const fs::path& hidden :
         HiddenIn(".")) // they may remain, but must not be counted after the next start
        fs::remove(hidden);
    Prepare(scenario);
    Require(scenario.operate(), "it fails after the next start");
    scenario.check(Outcome::Succeeded);
    return kPassed;
}

using TrialWork = std::function<int(const AllocationScenario& scenario)>;

[[noreturn]] void Perform(const std::string& name, const std::string& folder, const TrialWork& work) {
    int result = kWrong;
    alarm(kTimeOut);
    try {
        fs::current_path(folder + "/work");
        const int errors =
            open((folder + kErrorFile).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(errors, STDERR_FILENO);
        QMaskWidget canvas;
        result = work(ScenarioOf(name, canvas));
    } catch (const std::exception& problem) {
        std::printf("    %s\n", problem.what());
        std::fflush(stdout);
    }
    _exit(result);
}

/// @return the wait status of the process
int InProcess(const std::string& name, const std::string& folder, const TrialWork& work) {
    std::fflush(stdout);
    const pid_t process = fork();
    if (process == 0)
        Perform(name, folder, work);
    int status = 0;
    waitpid(process, &status, 0);
    return status;
}

/// The archive library has no error path for the memory of its strings: it prints one of these messages and
/// exits.
bool LibraryHasExited(int status, const std::string& folder) {
    const std::string printed = FileContent(folder + kErrorFile);
    return WIFEXITED(status) && WEXITSTATUS(status) == 1 &&
           (printed.ends_with("Fatal Internal Error in libarchive: Out of memory\n") ||
            printed.ends_with("Fatal Internal Error in libarchive: No memory\n"));
}

void PrintProblem(long failing, int status) {
    if (WIFSIGNALED(status))
        std::printf("  allocation %ld: ended by signal %d\n", failing, WTERMSIG(status));
    else
        std::printf("  allocation %ld: ended with %d\n", failing, WEXITSTATUS(status));
}

} // namespace

std::vector<std::string> AllocationScenarios() {
    return {"memory-load-text",   "memory-load-binary", "memory-save-text",
            "memory-save-binary", "memory-pack",        "memory-unpack"};
}

AllocationResult RunAllocations(const std::string& name, const std::string& folder, long step) {
    constexpr long kTestedWithoutGaps = 100;
    constexpr int kMaxProblems = 10;
    AllocationResult result;
    for (long failing = 1; result.problems < kMaxProblems;
         failing += failing < kTestedWithoutGaps ? 1 : step) {
        fs::remove_all(folder + "/work");
        fs::create_directory(folder + "/work");
        int status =
            InProcess(name, folder, [failing](const auto& scenario) { return FailOne(scenario, failing); });
        if (LibraryHasExited(status, folder)) {
            ++result.exits;
            status = InProcess(name, folder, CheckEnded);
        }
        if (WIFEXITED(status) && WEXITSTATUS(status) == kNoneFailed)
            return result;
        ++result.failed;
        if (status != kPassed) {
            PrintProblem(failing, status);
            ++result.problems;
        }
    }
    return result;
}
