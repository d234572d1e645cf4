#include "ServerTest.h"

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

const char* const kArchiveBody = "{\"contents\" : [\"allWorkspaces\"]}";
const char* const kArchivePath = "/system/commands/archive";
const char* const kRestorePath = "/system/commands/restore";
const char* const kReplayPath = "/replay/playback";

namespace {

std::string BigEndian(std::uint64_t value, unsigned bytes) {
    std::string text;
    for (unsigned shift = 8 * bytes; shift > 0; shift -= 8)
        text += static_cast<char>(value >> (shift - 8) & 0xffU);
    return text;
}

} // namespace

Tree TreeOf(const std::string& folder) {
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string name = fs::relative(entry.path(), folder).string();
        if (entry.is_directory() && !entry.is_symlink())
            tree[name + "/"] = "";
        else
            tree[name] = entry.is_symlink() ? "link" : FileContent(entry.path().string());
    }
    return tree;
}

void MakeTree(const std::string& folder, const Tree& tree) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const auto& [name, content] : tree) {
        const fs::path path = fs::path(folder) / name;
        if (name.back() == '/') {
            fs::create_directories(path);
        } else {
            fs::create_directories(path.parent_path());
            WriteFile(path.string(), content);
        }
    }
}

bool Shell(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

std::string RestoreBody(const std::string& archive) {
    return "\xa2\x68"
           "contents\x81\x6d"
           "allWorkspaces\x64"
           "data\x5a" +
           BigEndian(archive.size(), 4) + archive;
}

std::string DataOf(const std::string& cbor) {
    EXPECT_EQ(cbor.substr(0, 7), "\xa1\x64"
                                 "data\x5b");
    EXPECT_EQ(cbor.substr(7, 8), BigEndian(cbor.size() - 15, 8));
    return cbor.substr(std::min<std::size_t>(cbor.size(), 15));
}

ServerTest::ServerTest()
    : original{{"vdk/", ""},
               {"vdk/settings.json", "{}"},
               {"vdk/ContourPath/", ""},
               {"vdk/ContourPath/a b.trk", "first"},
               {"vdk/ContourPath/Stra\xc3\x9f"
                "e.trk",
                std::string(70000, 'x')},
               {"vdk/ContourPath/empty.trk", ""},
               {"vdk/empty/", ""}},
      changed{{"vdk/", ""}, {"vdk/ContourPath/", ""}, {"vdk/ContourPath/new.trk", "second"}} {
    MakeTree(Served(), original);
}

std::string ServerTest::Tarred(const Tree& tree, const std::string& options) const {
    MakeTree(folder.Path("tarred"), tree);
    EXPECT_TRUE(Shell("tar " + options + " -cf tarred.tar -C tarred $(ls -A tarred)"));
    return FileContent(folder.Path("tarred.tar"));
}

std::string ServerTest::BackupAround(const std::string& osws, const std::string& info) const {
    Tree outer{{"workspaces/Workspace.osws", osws}};
    if (!info.empty())
        outer["info.json"] = info;
    return Tarred(outer);
}

std::string ServerTest::Backup(const Tree& workspace, const std::string& info) const {
    return BackupAround(Tarred(workspace), info);
}

RawHttp::Reply ServerTest::Restore(const OstraServerProcess& server, const std::string& archive) {
    return RawHttp::Request(server.ControlPort(), "POST", kRestorePath, RestoreBody(archive),
                            "application/cbor");
}

RawHttp::Reply ServerTest::Archive(const OstraServerProcess& server) {
    return RawHttp::Request(server.ControlPort(), "POST", kArchivePath, kArchiveBody);
}

Tree ServerTest::ServedTree(const OstraServerProcess& server) const {
    const RawHttp::Reply reply = Archive(server);
    EXPECT_EQ(reply.status, 200U);
    EXPECT_TRUE(reply.IsComplete());
    WriteFile(folder.Path("got.tar"), DataOf(reply.body));
    EXPECT_TRUE(Shell("rm -rf got && mkdir -p got/in && tar -xf got.tar -C got && "
                      "tar -xf got/workspaces/Workspace.osws -C got/in"));
    return TreeOf(folder.Path("got/in"));
}

std::string ServerTest::Leftovers() const {
    std::string names;
    for (const auto& entry : fs::directory_iterator(folder.Path(""))) {
        const std::string name = entry.path().filename().string();
        if (name.front() == '.' && !name.ends_with(".ostra-lock") &&
            name.find(".ostra-kept-") == std::string::npos)
            names += name + " ";
    }
    return names;
}
