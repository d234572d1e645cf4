#include "ServerArchiveTrial.h"

#include "RawHttp.h"
#include "TemporaryFolder.h"
#include "WatchedServer.h"
#include "basalt/Exception.h"
#include "link/OstraSdkClient.h"

#include <filesystem>
#include <optional>

namespace {

const std::string kFetched = "fetched.osbak"; // the backup that the editor's client writes

/// Larger than one read of the server, and not a multiple of it.
FileTree Tracks() {
    return {{"a.trk", std::string(600'000, 'a')}, {"b.trk", "small"}, {"empty.trk", ""}};
}

/// The result of a client: an archive, or the reason why there is none.
struct Outcome {
    std::optional<std::string> archive;
    std::string failure;
};

Outcome FetchAsEditor(const OstraServerProcess& server) {
    std::filesystem::remove(kFetched);
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.ControlPort());
    try {
        client.Backup(kFetched);
        return {FileContent(kFetched), ""};
    } catch (const Ve::Exception& failure) {
        return {std::nullopt, std::filesystem::exists(kFetched) ? "a file remains" : failure.what()};
    }
}

/// The reply begins with a CBOR map header, the key "data" and a byte string header with an 8-byte length.
Outcome FetchPlainly(const OstraServerProcess& server) {
    constexpr std::size_t kPrefix = 15;
    const RawHttp::Reply reply = RawHttp::Request(server.ControlPort(), "POST", "/system/commands/archive",
                                                  R"({"contents": ["allWorkspaces"]})");
    if (reply.status == 200 && reply.IsComplete())
        return {reply.body.substr(std::min(kPrefix, reply.body.size())), ""};
    if (reply.status == 200)
        return {std::nullopt, "cut"};
    return {std::nullopt, reply.IsComplete() ? std::to_string(reply.status) + reply.body : "no answer"};
}

/// Whether the failure was reported to the client as documented.
bool IsReported(const Outcome& outcome) {
    return outcome.failure == "Failed to call the Backup request." || outcome.failure == "cut" ||
           outcome.failure == R"(500{"error":"The workspace cannot be read."})" ||
           outcome.failure == R"(500{"error":"The workspace cannot be opened."})";
}

bool IsComplete(const std::string& archive) {
    try {
        return TracksInBackup(archive) == Tracks();
    } catch (const std::exception&) {
        return false;
    }
}

void CheckArchive(Problems& problems, const Outcome& outcome, const std::string& when) {
    if (outcome.archive && !IsComplete(*outcome.archive))
        problems.push_back(when + "the archive looks complete but is not");
    if (FilesIn(kServedTracks) != Tracks())
        problems.push_back(when + "the workspace has changed");
}

} // namespace

Problems ServerArchiveTrial::Run(const Trial& trial, FileCallReport& report) const {
    const TrialDisk disk(std::filesystem::absolute(kServerFolder), trial);
    WriteTree(InFolder(kServedTracks, Tracks()));
    const OstraServerProcess server = StartWatched(preload);
    const auto fetch = plain ? FetchPlainly : FetchAsEditor;

    report.armed = true;
    const Outcome outcome = fetch(server);
    report.armed = false;

    Problems problems;
    JudgeAnswer(problems, report, {outcome.archive.has_value(), IsReported(outcome)});
    CheckArchive(problems, outcome, "");
    const Outcome next = fetch(server);
    if (!next.archive)
        problems.push_back("next time: " + next.failure);
    CheckArchive(problems, next, "next time: ");
    return problems;
}

Problems ServerArchiveTrial::RunAfterKill() const {
    return {"a scenario that only reads is never killed"};
}
