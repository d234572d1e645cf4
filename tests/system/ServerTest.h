#pragma once

#include "OstraServerProcess.h"
#include "RawHttp.h"
#include "TemporaryFolder.h"

#include <cstdint>
#include <map>
#include <string>

#include <gtest/gtest.h>

/// A folder's files (path to content) and folders (path with "/" at its end, to "").
using Tree = std::map<std::string, std::string>;

/// The content of a folder.
Tree TreeOf(const std::string& folder);
/// Creates a folder with exactly this content.
void MakeTree(const std::string& folder, const Tree& tree);
/// Runs a shell command. @return whether it succeeded
bool Shell(const std::string& command);

/// `{"contents": ["allWorkspaces"], "data": <bytes>}` in CBOR, written independently of the server.
std::string RestoreBody(const std::string& archive);
/// The bytes of `{"data": <bytes>}` in CBOR; fails the test for anything else.
std::string DataOf(const std::string& cbor);

/// Tests of the real server: a small workspace in a temporary folder, archives made with GNU tar.
class ServerTest : public testing::Test {
  protected:
    ServerTest();

    /// The name of the served folder in the temporary folder.
    [[nodiscard]] std::string Served() const { return folder.Path("station one"); }
    /// A backup archive of `workspace` with this info.json (none when empty).
    [[nodiscard]] std::string Backup(const Tree& workspace,
                                     const std::string& info = "{\"serial\": \"1\"}") const;
    /// A backup archive with these bytes as its workspace archive.
    [[nodiscard]] std::string BackupAround(const std::string& osws, const std::string& info) const;
    /// Packs a tree with GNU tar. @param options additional arguments for tar
    [[nodiscard]] std::string Tarred(const Tree& tree, const std::string& options = "") const;
    static RawHttp::Reply Restore(const OstraServerProcess& server, const std::string& archive);
    static RawHttp::Reply Archive(const OstraServerProcess& server);
    /// The workspace as a client sees it: the archive's inner tree, unpacked by GNU tar.
    Tree ServedTree(const OstraServerProcess& server) const;
    /// The hidden names beside the workspace, except the server's lock and the kept contents.
    [[nodiscard]] std::string Leftovers() const;

    TemporaryFolder folder;
    Tree original;
    Tree changed;
};

extern const char* const kArchiveBody;
extern const char* const kArchivePath;
extern const char* const kRestorePath;
extern const char* const kReplayPath;
