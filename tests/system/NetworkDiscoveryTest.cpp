// Discovery by broadcast between two network namespaces that are connected only with each other, so that no
// datagram leaves the machine. Creating them needs root.

#include "OstraServerProcess.h"
#include "TemporaryFolder.h"
#include "link/OstraSdkClient.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace {

bool Run(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0; // NOLINT(cert-env33-c): a fixed command
}

/// One network namespace, removed with the object.
class Network {
  public:
    explicit Network(std::string name) : name(std::move(name)), made(Run("ip netns add " + this->name)) {}
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;
    ~Network() {
        if (made)
            Run("ip netns del " + name);
    }

    [[nodiscard]] bool Made() const { return made; }
    [[nodiscard]] bool Ip(const std::string& arguments) const {
        return Run("ip -n " + name + " " + arguments);
    }
    /// Moves this thread, and the processes that it starts, into this network.
    [[nodiscard]] bool Enter() const {
        const int descriptor = open(("/run/netns/" + name).c_str(), O_RDONLY | O_CLOEXEC);
        const bool entered = descriptor >= 0 && setns(descriptor, CLONE_NEWNET) == 0;
        close(descriptor);
        return entered;
    }

    std::string name;

  private:
    bool made;
};

/// The editor's address 10.77.0.1, the server's 10.77.0.2, and a second interface of the editor (10.78.0.1)
/// without any peer.
class NetworkDiscovery : public testing::Test {
  protected:
    void SetUp() override {
        if (!editor.Made() || !server.Made() || !Join())
            GTEST_SKIP() << "this machine does not allow making networks (it takes root and veth)";
    }

    [[nodiscard]] bool Join() const {
        return editor.Ip("link add cable type veth peer name cable netns " + server.name) &&
               editor.Ip("link add loose type veth peer name end") &&
               editor.Ip("addr add 10.78.0.1/24 brd + dev loose") &&
               editor.Ip("addr add 10.77.0.1/24 brd + dev cable") &&
               server.Ip("addr add 10.77.0.2/24 brd + dev cable") && editor.Ip("link set lo up") &&
               server.Ip("link set lo up") && editor.Ip("link set loose up") &&
               editor.Ip("link set cable up") && server.Ip("link set cable up");
    }

    Network editor{"corvane-editor-" + std::to_string(getpid())};
    Network server{"corvane-server-" + std::to_string(getpid())};
};

TEST_F(NetworkDiscovery, findsAServerByBroadcastAndConnectsToIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("workspace");
    ASSERT_TRUE(server.Enter());
    const OstraServerProcess process(
        "workspace", {"--address", "10.77.0.2", "--discovery-port", "3601", "--serial", "77"});
    ASSERT_TRUE(editor.Enter());
    unsetenv("OSTRA_DISCOVERY"); // broadcasts stay within the two networks
    std::vector<OstraServerInfo> list;
    OstraSdkClient::DiscoverOstraServers(list);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].address, "10.77.0.2");
    EXPECT_EQ(list[0].controlPort, process.ControlPort());
    OstraSdkClient client;
    client.Connect(list[0].address, list[0].controlPort);
    EXPECT_FALSE(client.GetReplayMode());
}

TEST_F(NetworkDiscovery, findsNothingWhereNoServerAnswers) {
    ASSERT_TRUE(editor.Enter());
    unsetenv("OSTRA_DISCOVERY"); // broadcasts stay within the two networks
    std::vector<OstraServerInfo> list;
    OstraSdkClient::DiscoverOstraServers(list);
    EXPECT_TRUE(list.empty());
}

TEST_F(NetworkDiscovery, findsNothingWithoutAnyNetwork) {
    ASSERT_TRUE(editor.Ip("link set cable down") && editor.Ip("link set loose down") &&
                editor.Ip("link set lo down"));
    ASSERT_TRUE(editor.Enter());
    unsetenv("OSTRA_DISCOVERY"); // nothing can be sent
    std::vector<OstraServerInfo> list;
    EXPECT_NO_THROW(OstraSdkClient::DiscoverOstraServers(list));
    EXPECT_TRUE(list.empty());
}

} // namespace
