#include "FaultyProxy.h"

#include "FolderTree.h"
#include "OstraServerProcess.h"
#include "RunTool.h"
#include "TarBlocks.h"
#include "TemporaryFolder.h"
#include "basalt/bStatus.h"
#include "link/BlockingController.h"
#include "link/OstraSdkClient.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Kind = LinkFault::Kind;
using Tree = std::map<std::string, std::string>;

const std::string kServed = "station";
const std::string kLock = ".station.ostra-lock";
const std::string kDownloaded = "Ostra.osbak";
const std::string kUploaded = "restore.osbak";

unsigned Setting(const char* name, unsigned usual) {
    const char* const value = std::getenv(name);
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : usual;
}

std::string Tarred(const Tree& tree) {
    std::string archive;
    for (const auto& [name, content] : tree)
        archive += name.back() == '/' ? TarFolder(name) : TarFile(name, content);
    return archive + TarEnd();
}

void MakeFolder(const std::string& folder, const Tree& tree) {
    for (const auto& [name, content] : tree) {
        if (name.back() == '/')
            fs::create_directories(fs::path(folder) / name);
        else
            WriteFile(folder + "/" + name, content);
    }
}

std::size_t ThreadsOf(pid_t process) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& task :
         fs::directory_iterator("/proc/" + std::to_string(process) + "/task"))
        ++count;
    return count;
}

/// What one call of the client did.
struct Outcome {
    Ve::Exception result{bOK};
    Clock::duration taken{};
    [[nodiscard]] bool Succeeded() const { return result.Status() == bOK; }
};

Outcome OutcomeOf(const std::function<void()>& call) {
    Outcome outcome;
    const auto start = Clock::now();
    try {
        call();
    } catch (const Ve::Exception& failure) {
        outcome.result = failure;
    }
    outcome.taken = Clock::now() - start;
    return outcome;
}

/// Rounds of backup and restore through a proxy that does one wrong to each. Everything is drawn from one
/// seed.
class ServerLink : public ::testing::Test {
  protected:
    void SetUp() override {
        seed = Setting("CORVANE_STORM_SEED", 20);
        random.seed(seed);
        current = NewWorkspace();
        fs::create_directory(kServed);
        MakeFolder(kServed, current);
        server = std::make_unique<OstraServerProcess>(kServed);
        idleThreads = ThreadsOf(server->Pid());
        proxy = std::make_unique<FaultyProxy>(server->ControlPort());
        directClient.Connect("127.0.0.1", server->ControlPort());
    }

    unsigned Pick(unsigned count) { return static_cast<unsigned>(random() % count); }

    Tree NewWorkspace() {
        Tree tree{{"vdk/", ""}, {"vdk/ContourPath/", ""}};
        for (unsigned file = 1 + Pick(5); file > 0; --file) {
            std::string content(Pick(4) == 0 ? Pick(3) : Pick(40000), '\0');
            for (char& byte : content)
                byte = static_cast<char>(random());
            tree["vdk/ContourPath/N\xc3\xa4ht " + std::to_string(file) + ".trk"] = content;
        }
        return tree;
    }

    static std::string Backup(const Tree& workspace, bool replay) {
        return Tarred({{"info.json", std::string("{\"replay\": ") + (replay ? "true" : "false") + "}"},
                       {"workspaces/", ""},
                       {"workspaces/Workspace.osws", Tarred(workspace)}});
    }

    /// A fault whose byte may lie anywhere in so many.
    LinkFault NewFault(std::uint64_t bytes, bool mostlyToServer) {
        constexpr unsigned kHead = 300;
        LinkFault fault;
        fault.kind = static_cast<Kind>(Pick(LinkFault::kKinds));
        if (Pick(4) == 0)
            fault.kind = Kind::Corrupt; // the one that could go unnoticed
        fault.toServer = (Pick(4) != 0) == mostlyToServer;
        fault.offset = Pick(3) == 0 ? Pick(kHead) : Pick(static_cast<unsigned>(bytes) + kHead);
        fault.length = 1 + Pick(Pick(2) == 0 ? 8 : 3000);
        fault.pause = std::chrono::milliseconds(Pick(2) == 0 ? Pick(30) : 250 + Pick(200));
        fault.seed = static_cast<std::uint32_t>(random());
        if (fault.kind == Kind::Corrupt)
            fault.length = 1 + Pick(8);
        return fault;
    }

    /// Whether every byte arrives as it was and soon enough.
    static bool IsHarmless(const LinkFault& fault) {
        return fault.kind == Kind::None || fault.kind == Kind::Pieces ||
               (fault.kind == Kind::Late && fault.pause < 100ms);
    }

    OstraTimeouts TimeoutsFor(const LinkFault& fault) const {
        const std::chrono::microseconds time = IsHarmless(fault) ? patience : 300ms;
        return {time.count(), time.count()};
    }

    /// Connects and runs the operation, with the fault in one of the connections that this makes.
    Outcome Run(OstraSdkClient& client, const LinkFault& fault, std::size_t connection,
                const std::function<void()>& operation) {
        std::vector<LinkFault> plan(connection + 1);
        plan[connection] = fault;
        proxy->Plan(plan);
        Outcome connected = OutcomeOf([&] { client.Connect("127.0.0.1", proxy->Port()); });
        EXPECT_LT(connected.taken, 5s + slack);
        if (connected.Succeeded())
            return OutcomeOf(operation);
        EXPECT_STREQ(connected.result.what(), "Failed to connect the OstraServer (127.0.0.1).");
        return connected;
    }

    void Note(const std::string& operation, const LinkFault& fault, const Outcome& outcome) {
        ++counts[operation + (outcome.Succeeded() ? ": done" : std::string(": ") + outcome.result.what())];
        EXPECT_TRUE(outcome.Succeeded() || !IsHarmless(fault)) << outcome.result.what();
    }

    /// Waits until the server has come to the end of everything that reached it.
    void AwaitQuiet() {
        proxy->CloseAll();
        // Connections are accepted in their order: when this one is served, none waits any more.
        directClient.Connect("127.0.0.1", server->ControlPort());
        const auto end = Clock::now() + patience;
        while (ThreadsOf(server->Pid()) > idleThreads && Clock::now() < end)
            std::this_thread::sleep_for(1ms);
        ASSERT_LE(ThreadsOf(server->Pid()), idleThreads) << "the server does not come to rest";
    }

    void BackupRound() {
        const LinkFault fault = NewFault(60000, false);
        SCOPED_TRACE("backup, " + Description(fault));
        const std::string before = FileContent(kDownloaded);
        OstraSdkClient client(TimeoutsFor(fault));
        const Outcome outcome =
            Run(client, fault, Pick(10) == 0 ? 0 : 1, [&] { client.Backup(kDownloaded); });
        EXPECT_LT(outcome.taken, (IsHarmless(fault) ? patience : 5s) + slack);
        Note("backup", fault, outcome);
        AwaitQuiet();
        EXPECT_EQ(FolderTree(kServed), current);
        if (outcome.Succeeded())
            EXPECT_EQ(Unpacked(), current) << "the backup is not what the server holds";
        else
            EXPECT_EQ(FileContent(kDownloaded), before);
        if (!outcome.Succeeded() && client.IsConnected()) {
            EXPECT_EQ(outcome.result.Status(), bERROR_REQUEST);
            EXPECT_STREQ(outcome.result.what(), "Failed to call the Backup request.");
        }
    }

    /// The downloaded backup's workspace, by the system's tar.
    static Tree Unpacked() {
        EXPECT_EQ(RunTool("rm -rf got && mkdir -p got/in && tar -xf " + kDownloaded +
                          " -C got && tar -xf got/workspaces/Workspace.osws -C got/in"),
                  "");
        Tree tree = FolderTree("got/in");
        fs::remove_all("got");
        return tree;
    }

    void RestoreRound() {
        const Tree changed = NewWorkspace();
        const bool mode = Pick(2) == 0;
        directClient.SetReplayMode(mode);
        const std::string archive = Backup(changed, Pick(2) == 0);
        WriteFile(kUploaded, archive);
        const LinkFault fault = NewFault(archive.size(), true);
        // Connecting, the replay mode, the restore, the replay mode twice.
        constexpr std::size_t kSuffering[] = {0, 1, 2, 2, 2, 2, 2, 2, 3, 4};
        const std::size_t connection = kSuffering[Pick(10)];
        SCOPED_TRACE("restore, connection " + std::to_string(connection) + " " + Description(fault));

        OstraSdkClient client(TimeoutsFor(fault));
        BlockingController controller(&client, nullptr);
        Ve::Exception result(bOK);
        QObject::connect(&controller, &BlockingController::SignalRestoreFinished,
                         [&](const Ve::Exception& finished) { result = finished; });
        Outcome outcome = Run(client, fault, connection,
                              [&] { controller.SlotRestore(QString::fromStdString(kUploaded)); });
        if (client.IsConnected())
            outcome.result = result;
        EXPECT_LT(outcome.taken, (IsHarmless(fault) ? 4 * patience : 5s) + slack);
        Note("restore", fault, outcome);
        AwaitQuiet();
        CheckRestored(outcome, client.IsConnected(), changed, mode);
    }

    void CheckRestored(const Outcome& outcome, bool connected, const Tree& changed, bool mode) {
        using testing::AnyOf;
        const Tree served = FolderTree(kServed);
        if (outcome.Succeeded()) {
            EXPECT_EQ(served, changed);
            EXPECT_EQ(directClient.GetReplayMode(), mode);
        } else {
            EXPECT_THAT(served, AnyOf(current, changed)) << "neither the old workspace nor the new one";
        }
        if (!outcome.Succeeded() && connected) {
            EXPECT_EQ(outcome.result.Status(), bERROR_REQUEST);
            EXPECT_THAT(std::string(outcome.result.what()),
                        AnyOf("Failed to call the Restore request.", "Failed to set the replay mode.",
                              "Failed to get the status of the replay mode."));
        }
        current = served;
    }

    /// Nothing half-done lies about, with the editor or with the server.
    static void CheckNames() {
        for (const auto& entry : fs::directory_iterator(".")) {
            const std::string name = entry.path().filename().string();
            EXPECT_THAT(name, testing::AnyOf(kServed, kLock, kDownloaded, kUploaded,
                                             testing::StartsWith("." + kServed + ".ostra-kept-")));
        }
    }

    void Report(unsigned rounds) const {
        std::printf("server link: seed %u, %u rounds\n", seed, rounds);
        for (const auto& [what, count] : counts)
            std::printf("  %5u  %s\n", count, what.c_str());
    }

    const std::chrono::microseconds patience = 60s; ///< where nothing is to go wrong
    const std::chrono::microseconds slack = 10s;    ///< for a machine that has other things to do

    TemporaryFolder folder;
    unsigned seed = 0;
    std::mt19937 random;
    Tree current; ///< what the server serves
    std::unique_ptr<OstraServerProcess> server;
    std::unique_ptr<FaultyProxy> proxy;
    OstraSdkClient directClient;
    std::size_t idleThreads = 0;
    std::map<std::string, unsigned> counts;
};

TEST_F(ServerLink, leavesTheOldWorkspaceOrTheNewOneWhateverTheNetworkDoes) {
    const unsigned rounds = Setting("CORVANE_STORM_ROUNDS", 100);
    for (unsigned round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round));
        if (Pick(2) == 0)
            BackupRound();
        else
            RestoreRound();
        CheckNames();
    }
    Report(rounds);
}

// The checks above would pass a proxy that does nothing.
TEST_F(ServerLink, theProxyDoesWhatItIsToldTo) {
    std::string content(100'000, '\0');
    for (char& byte : content)
        byte = static_cast<char>(random());
    WriteFile(kServed + "/vdk/ContourPath/A.trk", content); // it is the first file
    for (const Kind kind : {Kind::Cut, Kind::Reset, Kind::HalfClose, Kind::Repeat, Kind::Lose, Kind::Corrupt,
                            Kind::Swap, Kind::Stop, Kind::Late, Kind::Refuse}) {
        LinkFault fault;
        fault.kind = kind;
        fault.offset = 50'000; // within the file's content
        fault.length = 5;
        fault.pause = 2s;
        SCOPED_TRACE(Description(fault));
        OstraSdkClient client({300'000, 300'000});
        const Outcome outcome = Run(client, fault, 1, [&] { client.Backup(kDownloaded); });
        EXPECT_FALSE(outcome.Succeeded());
        AwaitQuiet();
    }
}

// A file's content is the one place where nothing but the digest tells.
TEST_F(ServerLink, aReplyThatTheServerDamagedIsNoBackup) {
    server.reset(); // one server serves a folder
    server = std::make_unique<OstraServerProcess>(
        kServed, std::vector<std::string>{"--fault-damage", "--fault-path", "/system/commands/archive"});
    OstraSdkClient client;
    client.Connect("127.0.0.1", server->ControlPort());
    const Outcome outcome = OutcomeOf([&] { client.Backup(kDownloaded); });
    EXPECT_STREQ(outcome.result.what(), "Failed to call the Backup request.");
    EXPECT_FALSE(fs::exists(kDownloaded));
}

} // namespace
