#include "ServerTrial.h"

#include "RawHttp.h"
#include "WatchedServer.h"

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

FileTree Old() {
    return {{"a.trk", std::string(70'000, 'o')}, {"b.trk", "old"}};
}

FileTree New() {
    return {{"a.trk", std::string(90'000, 'n')}, {"c.trk", "new"}, {"d.trk", ""}};
}

/// Other files of the operator in the same folder as the workspace.
FileTree Neighbours() {
    return {{"station.osbak", "mine"}, {"mine.trk", "mine too"}};
}

std::string BigEndian(std::uint32_t value) {
    std::string bytes;
    for (unsigned shift = 32; shift > 0; shift -= 8)
        bytes += static_cast<char>(value >> (shift - 8) & 0xFFU);
    return bytes;
}

/// @return the reply's status; 0 when the server has ended
unsigned Restore(const OstraServerProcess& server, std::string& text) {
    const std::string archive = BackupArchive(New());
    const std::string body = "\xa2\x68"
                             "contents\x81\x6d"
                             "allWorkspaces\x64"
                             "data\x5a" +
                             BigEndian(static_cast<std::uint32_t>(archive.size())) + archive;
    const RawHttp::Reply reply =
        RawHttp::Request(server.ControlPort(), "POST", "/system/commands/restore", body, "application/cbor");
    text = reply.body;
    return reply.IsComplete() ? reply.status : 0;
}

/// The files that a server keeps beside the workspace on purpose: its lock, and previous contents.
bool IsKeptOnPurpose(const std::string& name) {
    return name.ends_with(".ostra-lock") || name.find(".ostra-kept-") != std::string::npos;
}

void Check(Problems& problems, const std::string& when, bool finished) {
    const FileTree tracks = FilesIn(kServedTracks);
    if (tracks != New() && (finished || tracks != Old()))
        problems.push_back(when + "the workspace is neither the old nor the new one");
    FileTree siblings = FilesIn(kServerFolder);
    std::erase_if(siblings, [](const auto& file) { return IsKeptOnPurpose(file.first); });
    if (siblings != Neighbours())
        problems.push_back(when + "something beside the workspace has changed");
}

bool HasHidden(const std::string& folder) {
    return std::any_of(fs::directory_iterator(folder), {}, [](const fs::directory_entry& entry) {
        const std::string name = entry.path().filename().string();
        return name.front() == '.' && !IsKeptOnPurpose(name);
    });
}

void RestoreWell(Problems& problems, const OstraServerProcess& server, const std::string& when) {
    std::string text;
    if (Restore(server, text) != 200)
        problems.push_back(when + "the restore fails: " + text);
    Check(problems, when, true);
}

} // namespace

void ServerTrial::Arrange(FileCallReport& report) const {
    TrialScenario::Arrange(report);
    report.noExchange = noExchange;
}

Problems ServerTrial::Run(const Trial& trial, FileCallReport& report) const {
    const TrialDisk disk(fs::absolute(kServerFolder), trial);
    WriteTree(InFolder(kServedTracks, Old()));
    WriteTree(InFolder(kServerFolder + "/", Neighbours()));
    OstraServerProcess server = StartWatched(preload);

    disk.Fill();
    report.armed = true;
    std::string text;
    const unsigned status = Restore(server, text);
    report.armed = false;
    disk.Enlarge();

    Problems problems;
    if (trial.fault == Fault::Kill || trial.fault == Fault::TornKill) {
        server.Kill(); // the fault may fall on what follows the reply
        // Between the two renamings of a file system that cannot exchange folders there may be no workspace:
        // starting puts it back.
        if (!noExchange || status == 200)
            Check(problems, "", status == 200);
        if (problems.empty())
            raise(SIGKILL); // the harness checks the files after this process
        return problems;
    }
    const std::vector<std::string> requests = server.Requests();
    const bool logged = requests.size() == 1 && requests[0].ends_with(std::to_string(status));
    const bool shown = logged && text.find("\"error\":\"") != std::string::npos;
    // After the exchange, a restore opens and lists only the old workspace, to remove it.
    const bool removes = FallsOn(report, "getdents64") || FallsOn(report, "open to read");
    if (status != 200 || !removes)
        JudgeAnswer(problems, report, {status == 200, shown});
    Check(problems, "", status == 200);
    RestoreWell(problems, server, "next time: ");
    return problems;
}

Problems ServerTrial::RunAfterKill() const {
    Problems problems;
    const OstraServerProcess server(kServedFolder);
    Check(problems, "", false);
    if (HasHidden(kServerFolder))
        problems.emplace_back("something of the killed server is left");
    RestoreWell(problems, server, "next start: ");
    return problems;
}
