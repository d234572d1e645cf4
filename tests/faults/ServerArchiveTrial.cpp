#include "ServerArchiveTrial.h"

#include "RawHttp.h"
#include "TemporaryFolder.h"
#include "WatchedServer.h"
#include "basalt/Exception.h"
#include "link/OstraSdkClient.h"

#include <filesystem>
#include <optional>

namespace {

const std::string kFetched = "fetched.osbak"; // what the editor's client makes of the reply

/// More than one piece of what the server reads at a time, and no whole number of them.
FileTree Tracks() {
    return {{"a.trk", std::string(600'000, 'a')}, {"b.trk", "small"}, {"empty.trk", ""}};
}

/// What a client has got: an archive, or the reason why there is none.
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
        return {std::nullopt, std::filesystem::exists(kFetched) ? "a file is left" : failure.what()};
    }
}

/// The head of the reply is that of a map with one binary member, whose length has eight bytes.
Outcome FetchPlainly(const OstraServerProcess& server) {
    constexpr std::size_t kHead = 15;
    const RawHttp::Reply reply = RawHttp::Request(server.ControlPort(), "POST", "/system/commands/archive",
                                                  R"({"contents": ["allWorkspaces"]})");
    if (reply.status == 200 && reply.Whole())
        return {reply.body.substr(std::min(kHead, reply.body.size())), ""};
    if (reply.status == 200)
        return {std::nullopt, "cut"};
    return {std::nullopt, reply.Whole() ? std::to_string(reply.status) + reply.body : "no answer"};
}

/// Whether a client was told of a failure in the way that is promised.
bool IsTold(const Outcome& outcome) {
    return outcome.failure == "Failed to call the Backup request." || outcome.failure == "cut" ||
           outcome.failure == R"(500{"error":"The workspace cannot be read."})" ||
           outcome.failure == R"(500{"error":"The workspace cannot be opened."})";
}

bool IsWhole(const std::string& archive) {
    try {
        return TracksInBackup(archive) == Tracks();
    } catch (const std::exception&) {
        return false;
    }
}

void CheckArchive(Problems& problems, const Outcome& outcome, const std::string& when) {
    if (outcome.archive && !IsWhole(*outcome.archive))
        problems.push_back(when + "the archive looks whole and is not");
    if (FilesIn(kServedTracks) != Tracks())
        problems.push_back(when + "the workspace has changed");
}

} // namespace

Problems ServerArchiveTrial::Run(const Trial& trial, FileCallReport& report) const {
    const TrialDisk disk(std::filesystem::absolute(kServerFolder), trial);
    WriteFolder(kServedTracks, Tracks());
    const OstraServerProcess server = StartWatched(preload);
    const auto fetch = plain ? FetchPlainly : FetchAsEditor;

    report.armed = true;
    const Outcome outcome = fetch(server);
    report.armed = false;

    Problems problems;
    JudgeAnswer(problems, report, {outcome.archive.has_value(), IsTold(outcome)});
    CheckArchive(problems, outcome, "");
    const Outcome next = fetch(server);
    if (!next.archive)
        problems.push_back("next time: " + next.failure);
    CheckArchive(problems, next, "next time: ");
    return problems;
}

Problems ServerArchiveTrial::RunAfterKill() const {
    return {"nothing is killed while it only reads"};
}
