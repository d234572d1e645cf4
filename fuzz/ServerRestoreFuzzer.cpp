#include "Check.h"
#include "FuzzedServer.h"
#include "TarBlocks.h"
#include "basalt/Exception.h"
#include "basalt/bObject.h"
#include "cinder/UnpackFolder.h"

#include <filesystem>

namespace {

constexpr const char* kContents = "\x68"
                                  "contents\x81\x6d"
                                  "allWorkspaces";

std::string Big(std::uint64_t number) {
    std::string bytes;
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> static_cast<unsigned>(shift) & 0xffU);
    return bytes;
}

std::string RequestTo(const std::string& path, const std::string& body) {
    return "POST " + path + " HTTP/1.1\r\nHost: x\r\nContent-Type: application/cbor\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string RestoreRequest(const std::string& archive) {
    return RequestTo("/system/commands/restore", "\xa2" + std::string(kContents) +
                                                     "\x64"
                                                     "data\x5b" +
                                                     Big(archive.size()) + archive);
}

/// A backup around a workspace archive.
std::string Backup(const std::string& workspace) {
    return TarFile("info.json", R"({"replay":true})") + TarFolder("workspaces") +
           TarFile("workspaces/Workspace.osws", workspace) + TarEnd();
}

/// Checks that the server's backup holds the workspace that it serves.
void CheckBackup(FuzzedServer& server, const Tree& served) {
    constexpr std::size_t kDataHeaderSize = 15;
    const auto replies = server.Talk(RequestTo("/system/commands/archive", "\xa1" + std::string(kContents)));
    Check(replies.size() == 1 && replies[0].status == 200, "a restored workspace can be backed up");
    Store("check.osbak", replies[0].body.substr(kDataHeaderSize));
    try {
        UnpackFolderStrictly("check.osbak", "check", bAlloc_Application());
        UnpackFolderStrictly("check/workspaces/Workspace.osws", "check.osws", bAlloc_Application());
    } catch (const Ve::Exception& failure) {
        Broken(std::string("a backup can be unpacked: ") + failure.what());
    }
    const Tree given = TreeOf("check.osws");
    Check(given.size() == served.size(), "a backup holds what was restored");
    for (const auto& [name, what] : served) {
        const auto found = given.find(name);
        Check(found != given.end() && found->second == what, "a backup holds what was restored");
    }
}

} // namespace

// Any bytes as an archive to restore: as the backup itself, or as the workspace inside one.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzedServer server;
    std::string archive(reinterpret_cast<const char*>(data), size);
    const bool isWorkspace = !archive.starts_with("info.json");
    if (isWorkspace)
        archive = Backup(archive);
    const auto replies = server.Talk(RestoreRequest(archive));
    Check(replies.size() == 1, "a request has one reply");
    if (replies[0].status != 200) {
        Check(server.IsAsAtFirst(), "a workspace that was not restored is unchanged");
        return 0;
    }
    const Tree served = FuzzedServer::Served();
    Check(served.count("vdk/ContourPath") == 1, "a restored workspace has its tracks' folder");
    for (const auto& [name, what] : served)
        Check(what.starts_with("file ") || what.starts_with("folder "),
              "only files and folders are restored");
    CheckBackup(server, served);
    server.Reset();
    return 0;
}
