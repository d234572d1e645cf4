#include "AllocationTrials.h"

#include "Allocations.h"
#include "Converter.h"
#include "Exception.h"
#include "FileCalls.h"
#include "FileReplacement.h"
#include "OperatorFiles.h"
#include "TemporaryFolder.h"
#include "TrackInfo.h"
#include "WorkingFiles.h"
#include "qmaskwidget.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <new>
#include <stdexcept>

#include <QImage>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int kWidth = 40;
constexpr int kHeight = 20;
constexpr unsigned kPatience = 300; // seconds: a hang ends the process
const std::string kTracks = "./TmpDirOsws/vdk/ContourPath/";

const independent::Track& Original() {
    static const independent::Track track = OperatorTrack(kWidth, kHeight);
    return track;
}

const FileTree& Tracks() {
    static const FileTree tracks = {{"binary.trk", independent::BinaryFile(Original())},
                                    {"text.trk", independent::TextFile(Original())}};
    return tracks;
}

void Require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// An operation, and what has to be true after it.
struct AllocationRoad {
    std::function<void()> prepare;             ///< what has to stand before it
    std::function<bool()> operate;             ///< whether it succeeded; exceptions of its own are no success
    std::function<void(bool succeeded)> check; ///< @throws std::runtime_error with what is wrong
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

AllocationRoad LoadRoad(const std::string& name, QMaskWidget& canvas) {
    return {[] {}, [name, &canvas] { return Load(TrackOf(name), canvas); },
            [name, &canvas](bool succeeded) {
                Require(FileContent(TrackOf(name)) == Tracks().at(name), "loading has changed the file");
                Require(!succeeded || (canvas.paths().size() == 1 && canvas.paths()[0].points.size() == 3),
                        "the paths that were loaded are others");
            }};
}

/// The editor's way of saving in place.
bool Save(const std::string& path, QMaskWidget& canvas) {
    const independent::Track& track = Original();
    canvas.SavePath(QString::fromStdString(path), QStringLiteral("temp.trk"), track.yResolution,
                    track.xOffset, track.yOffset, track.width * track.xResolution,
                    track.height * track.yResolution);
    return ReplaceFile("temp.trk", path);
}

bool IsSaved(const std::string& file) {
    try {
        return independent::ReadBinary(file).segments == Original().segments;
    } catch (const std::exception&) {
        return false;
    }
}

AllocationRoad SaveRoad(const std::string& name, QMaskWidget& canvas) {
    WriteFile(TrackOf(name), Tracks().at(name));
    Require(Load(TrackOf(name), canvas), "the track cannot be loaded");
    return {[name] { WriteFile(TrackOf(name), Tracks().at(name)); },
            [name, &canvas] { return Save(TrackOf(name), canvas); },
            [name](bool succeeded) {
                const std::string file = FileContent(TrackOf(name));
                Require(IsSaved(file) || (!succeeded && file == Tracks().at(name)), "the track is broken");
                for (const auto& entry : fs::directory_iterator("."))
                    Require(entry.path().filename().string().rfind(".corvane-", 0) != 0,
                            "a stray file is left");
            }};
}

AllocationRoad UnpackRoad() {
    return {[] {},
            [] {
                UnpackBackup("station.osbak");
                return true;
            },
            [](bool succeeded) {
                Require(FileContent("station.osbak") == BackupArchive(Tracks()), "the backup has changed");
                const FileTree unpacked = FilesIn(kTracks);
                Require(!succeeded || unpacked == Tracks(), "what was unpacked is not whole");
                for (const auto& [name, content] : unpacked)
                    Require(Tracks().count(name) == 1 && Tracks().at(name) == content,
                            "an unpacked file is broken");
            }};
}

AllocationRoad PackRoad() {
    UnpackBackup("station.osbak");
    return {[] {},
            [] {
                PackBackup("station.osbak");
                return true;
            },
            [](bool) {
                Require(TracksInBackup(FileContent("station.osbak")) == Tracks(), "the backup is broken");
                Require(FilesIn(kTracks) == Tracks(), "the workspace has changed");
            }};
}

AllocationRoad RoadOf(const std::string& name, QMaskWidget& canvas) {
    for (const auto& [file, content] : Tracks())
        WriteFile(file, content);
    WriteFile("station.osbak", BackupArchive(Tracks()));
    if (name == "memory-load-text")
        return LoadRoad("text.trk", canvas);
    if (name == "memory-load-binary")
        return LoadRoad("binary.trk", canvas);
    if (name == "memory-save-text")
        return SaveRoad("text.trk", canvas);
    if (name == "memory-save-binary")
        return SaveRoad("binary.trk", canvas);
    return name == "memory-pack" ? PackRoad() : UnpackRoad();
}

/// @return whether an allocation has failed: not when there were fewer
bool FailOne(const AllocationRoad& road, long failing, FileCallReport& report) {
    bool succeeded = false;
    road.prepare();
    try {
        CountAllocations(failing);
        succeeded = road.operate();
    } catch (const Ve::Exception&) {
        succeeded = false;
    } catch (const std::bad_alloc&) {
        succeeded = false; // the program would end here, with its files as they are
    }
    const bool failed = StopCountingAllocations() >= failing;
    road.check(succeeded);
    Require(failed || succeeded, "it failed though every allocation succeeded");
    if (failed) {
        ++report.count;
        Require(road.operate(), "it does not work the next time");
        road.check(true);
    }
    return failed;
}

[[noreturn]] void Perform(const std::string& name, const std::string& folder, long step,
                          FileCallReport& report) {
    constexpr long kAllTaken = 100;
    alarm(kPatience);
    try {
        fs::current_path(folder);
        std::fclose(stderr); // the log's lines are expected
        QMaskWidget canvas;
        const AllocationRoad road = RoadOf(name, canvas);
        report.at = 1;
        while (FailOne(road, report.at, report))
            report.at += report.at < kAllTaken ? 1 : step;
    } catch (const std::exception& problem) {
        std::printf("  allocation %ld: %s\n", report.at, problem.what());
        std::fflush(stdout);
        _exit(1);
    }
    _exit(0);
}

} // namespace

std::vector<std::string> AllocationRoads() {
    return {"memory-load-text",   "memory-load-binary", "memory-save-text",
            "memory-save-binary", "memory-pack",        "memory-unpack"};
}

AllocationResult RunAllocations(const std::string& name, const std::string& folder, long step) {
    FileCallReport* const report = MapReport((folder + "/report").c_str());
    std::fflush(stdout);
    const pid_t process = fork();
    if (process == 0)
        Perform(name, folder, step, *report);
    int status = 0;
    waitpid(process, &status, 0);
    if (WIFSIGNALED(status))
        std::printf("  allocation %ld: ended by signal %d\n", report->at, WTERMSIG(status));
    return {report->count, status == 0 ? 0 : 1};
}
