#include "ServerTest.h"

#include "basalt/bAlloc.h"
#include "link/FileUtils.h"
#include "link/OstraSdkClient.h"

#include <filesystem>

#include <gmock/gmock.h>

// What an editor does between connecting and syncing, without an edit: the workspace must be as it was.

namespace {

class ServerRoundTrip : public ServerTest {
  protected:
    /// Fetches the workspace, unpacks it, packs it again and restores it, as the editor does.
    static void ConnectAndSync(const OstraServerProcess& server) {
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.ControlPort());
        client.Backup("Ostra.osbak");
        TarUncompress("Ostra.osbak", "TmpDirBackup", bAlloc_Application());
        TarUncompress("TmpDirBackup/workspaces/Workspace.osws", "TmpDirOsws", bAlloc_Application());
        TarCompress("TmpDirOsws", "TmpDirBackup/workspaces/Workspace.osws", bAlloc_Application());
        TarCompress("TmpDirBackup", "Ostra.osbak", bAlloc_Application());
        client.Restore("Ostra.osbak");
    }

    /// Name, kind, permissions, time in seconds and size of everything in the workspace.
    [[nodiscard]] std::string Facts() const {
        EXPECT_TRUE(Shell("cd 'station one' && find . -mindepth 1 -printf '%P %y %m %Ts %s\\n' | "
                          "sed 's/ d \\([0-9]* [0-9]*\\) .*/ d \\1/' | LC_ALL=C sort > ../facts"));
        return FileContent(folder.Path("facts"));
    }
};

TEST_F(ServerRoundTrip, aConnectAndSyncWithoutAnEditChangesNothing) {
    EXPECT_TRUE(
        Shell("cd 'station one' && mkdir -m 700 vdk/private && echo s > vdk/private/secret && "
              "chmod 600 vdk/private/secret && echo '#!/bin/sh' > vdk/run && chmod 755 vdk/run && "
              "chmod 444 vdk/settings.json && chmod 666 'vdk/ContourPath/a b.trk' && chmod 775 vdk/empty && "
              "find . -mindepth 1 | LC_ALL=C sort | { t=1600000000; while read -r f; do "
              "touch -d @$((t += 1000)) \"$f\"; done; } && "
              "touch -d @1500000000 vdk/ContourPath && touch -d @1500001000 vdk/private && "
              "touch -d @1500002000 vdk"));
    const std::string before = Facts();
    const OstraServerProcess server(Served());
    ConnectAndSync(server);
    EXPECT_EQ(Facts(), before);
    ConnectAndSync(server);
    EXPECT_EQ(Facts(), before);
}

TEST_F(ServerRoundTrip, whatCannotSurviveIsReportedByTheLogAndKept) {
    EXPECT_TRUE(Shell("cd 'station one' && ln -s ContourPath vdk/link && mkfifo vdk/pipe"));
    const OstraServerProcess server(Served(), {"--log", folder.Path("log")});
    ConnectAndSync(server);
    const std::string log = FileContent(folder.Path("log"));
    EXPECT_THAT(
        log, testing::HasSubstr("# left out of the archive: 2 links and special files (vdk/link, vdk/pipe)\n"
                                "POST /system/commands/archive"));
    EXPECT_THAT(log, testing::HasSubstr(
                         "# not in the restored workspace: 2 links and special files (vdk/link, vdk/pipe)\n"
                         "POST /system/commands/restore"));
    EXPECT_EQ(TreeOf(Served()), original);
    EXPECT_TRUE(Shell(
        "test -L .station\\ one.ostra-kept-*/vdk/link && test -p .station\\ one.ostra-kept-*/vdk/pipe"));
}

} // namespace
