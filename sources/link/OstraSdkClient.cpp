#include "link/OstraSdkClient.h"

#include "basalt/AtomicFile.h"
#include "basalt/Exception.h"
#include "basalt/InputFile.h"
#include "basalt/SystemCalls.h"
#include "basalt/bFile.h"
#include "basalt/bStatus.h"
#include "log/Log.h"
#include "ostrasdk/OstraSdk.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace {

constexpr std::int64_t kDiscoveryTimeout = 10000; // microseconds

constexpr std::int64_t kMaxArchive = 4LL * 1024 * 1024 * 1024;

constexpr const char* kAllWorkspaces = "{\"contents\" : [\"allWorkspaces\"]}";

bIpAddress ParsedAddress(int line, const char* function, const char* text) {
    bIpAddress address;
    const bStatus status = bIpAddress_Parse(&address, text);
    if (status != bOK)
        throw Ve::Exception(line, __FILE__, status, function, "Failed to parse the ip address.");
    return address;
}

std::string FormattedAddress(int line, const char* function, const bIpAddress& address) {
    std::array<char, 16> text{};
    const bStatus status = bIpAddress_Format(address, text.data(), text.size());
    if (status != bOK)
        throw Ve::Exception(line, __FILE__, status, function, "Failed to format the ip address.");
    return text.data();
}

void RequireConnection(int line, const char* function, const OstraSdkClient& client) {
    if (!client.IsConnected())
        throw Ve::Exception(line, __FILE__, bERROR_NOT_CONNECTED, function,
                            "The client hasn't connected to any Ostra Server.");
}

/// The reply to the backup request; bytes are not copied.
OstraSdk::VeJson FetchArchive(OstraSdk::VeRestClient& client, std::int64_t timeout) {
    const OstraSdk::VeJson body = OstraSdk::VeJson::ParseString(kAllWorkspaces);
    OstraSdk::VeTransaction transaction = client.Call("/system/commands/archive", body, OstraSdk::VeJson());
    OstraSdk::VeJson payload = transaction.GetResponse(timeout).Payload();
    static_cast<void>(payload.At("data").GetBinary());
    return payload;
}

void SendArchive(OstraSdk::VeRestClient& client, std::vector<std::uint8_t>&& archive, std::int64_t timeout) {
    OstraSdk::VeJson body = OstraSdk::VeJson::ParseString(kAllWorkspaces);
    body.Set("data", std::move(archive));
    client.Call("/system/commands/restore", body, OstraSdk::VeJson()).CheckResponse(timeout);
}

/// A failure whose reason is logged and attached: the message is the one that operators know.
Ve::Exception Explained(const Ve::Exception& failure, const std::string& reason) {
    LOG_LINE(INFO) << failure.what() << " - " << reason;
    return failure.Because(reason);
}

/// The failure of a request; to be called in its catch handler.
Ve::Exception RequestFailure(int line, const char* function, const char* message) {
    std::string reason = "unknown error";
    try {
        throw;
    } catch (const std::exception& failure) {
        reason = failure.what();
    } catch (...) { // NOLINT(bugprone-empty-catch): everything known about it is logged already
    }
    return Explained(Ve::Exception(line, __FILE__, bERROR_REQUEST, function, "%s", message), reason);
}

/// Reads a file of this size. @return why that failed; empty on success
std::string ReadAll(InputFile& file, std::int64_t size, std::vector<std::uint8_t>& buffer) {
    // A vector zeroes the bytes it grows by: if it grew in one step, they would leave the processor's cache
    // before they are read into.
    constexpr std::int64_t kStep = std::int64_t{256} * 1024;
    if (size > kMaxArchive)
        return "it has " + std::to_string(size) + " bytes, and a request carries no more than 4 GiB";
    buffer.clear();
    ReserveInLargePages(buffer, static_cast<std::size_t>(size));
    std::size_t count = 0;
    for (std::int64_t done = 0; done < size; done += static_cast<std::int64_t>(count)) {
        const auto step = static_cast<std::size_t>(std::min(kStep, size - done));
        buffer.resize(static_cast<std::size_t>(done) + step);
        if (!file.Read(buffer.data() + done, step, &count))
            return file.Failure().message();
        if (count < step)
            return "it became shorter while it was read";
    }
    char more = 0;
    if (!file.Read(&more, 1, &count))
        return file.Failure().message();
    return count == 0 ? "" : "it became longer while it was read";
}

} // namespace

OstraSdkClient::OstraSdkClient() : OstraSdkClient(OstraTimeouts()) {
}

OstraSdkClient::OstraSdkClient(const OstraTimeouts& timeouts)
    : system(std::make_shared<OstraSdk::VeSystem>(
          ParsedAddress(__LINE__, "OstraSdkClient::OstraSdkClient", "127.0.0.1"), 3600)),
      timeouts(timeouts) {
}

OstraSdkClient::~OstraSdkClient() = default;

void OstraSdkClient::DiscoverOstraServers(std::vector<OstraServerInfo>& list) {
    list.clear();
    OstraSdk::VeDiscoveryClient discovery;
    discovery.BlockingDiscover(kDiscoveryTimeout);
    const std::vector<OstraSdk::VeInstance> found = discovery.InstanceList();
    for (std::size_t i = 0; i < found.size(); ++i) {
        const OstraSdk::VeInstance& instance = discovery.InstanceList().at(i);
        list.push_back(
            {FormattedAddress(__LINE__, "OstraSdkClient::DiscoverOstraServers", instance.GetIpAddress()),
             instance.GetControlPort()});
    }
}

void OstraSdkClient::Connect(const std::string& address, const unsigned int& controlPort) {
    constexpr const char* kFunction = "OstraSdkClient::Connect";
    if (system->IsConnected())
        Disconnect();
    const bIpAddress parsed = ParsedAddress(__LINE__, kFunction, address.c_str());
    system = std::make_shared<OstraSdk::VeSystem>(parsed, controlPort);
    try {
        system->Connect();
    } catch (const Ve::Exception& e) {
        throw Explained(Ve::Exception(__LINE__, __FILE__, e.Status(), kFunction,
                                      "Failed to connect the OstraServer (%s).", address.c_str()),
                        e.what());
    }
}

void OstraSdkClient::Disconnect() {
    constexpr const char* kFunction = "OstraSdkClient::Disconnect";
    if (!system->IsConnected())
        return;
    try {
        system->Disconnect();
    } catch (const Ve::Exception& e) {
        const std::string address = FormattedAddress(__LINE__, kFunction, system->Address());
        throw Ve::Exception(__LINE__, __FILE__, e.Status(), kFunction,
                            "Failed to disconnect the OstraServer (%s)", address.c_str());
    }
}

bool OstraSdkClient::IsConnected() const {
    return system->IsConnected();
}

void OstraSdkClient::Backup(const std::string& backupFileName) {
    constexpr const char* kFunction = "OstraSdkClient::Backup";
    RequireConnection(__LINE__, kFunction, *this);
    OstraSdk::VeJson payload;
    try {
        payload = FetchArchive(system->Client(), timeouts.archive);
    } catch (...) {
        throw RequestFailure(__LINE__, kFunction, "Failed to call the Backup request.");
    }
    const std::vector<std::uint8_t>& archive = payload.At("data").GetBinary();
    AtomicFile file(backupFileName);
    file.Write(archive.data(), archive.size());
    if (!file.Commit())
        throw Explained(Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction,
                                      "Failed to open the file - %s", backupFileName.c_str()),
                        file.Failure().message());
}

void OstraSdkClient::Restore(const std::string& fileName) {
    constexpr const char* kFunction = "OstraSdkClient::Restore";
    RequireConnection(__LINE__, kFunction, *this);
    if (bFile_Exists(fileName.c_str()) == 0)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_NOT_FOUND, kFunction, "%s doesn't exist.",
                            fileName.c_str());
    std::vector<std::uint8_t> archive;
    ReadFileBuffer(fileName, archive);
    try {
        SendArchive(system->Client(), std::move(archive), timeouts.archive);
    } catch (...) {
        throw RequestFailure(__LINE__, kFunction, "Failed to call the Restore request.");
    }
}

bool OstraSdkClient::GetReplayMode() {
    constexpr const char* kFunction = "OstraSdkClient::GetReplayMode";
    RequireConnection(__LINE__, kFunction, *this);
    try {
        const OstraSdk::VeJson empty;
        OstraSdk::VeTransaction transaction = system->Client().Read("/replay/playback", empty, empty);
        return transaction.GetResponse(timeouts.replay).Payload().At("enabled").Get<bool>();
    } catch (...) {
        throw RequestFailure(__LINE__, kFunction, "Failed to get the status of the replay mode.");
    }
}

void OstraSdkClient::SetReplayMode(bool enabled) {
    constexpr const char* kFunction = "OstraSdkClient::SetReplayMode";
    RequireConnection(__LINE__, kFunction, *this);
    try {
        const OstraSdk::VeJson body =
            OstraSdk::VeJson::ParseString(enabled ? "{\"enabled\": true}" : "{\"enabled\": false}");
        system->Client().Update("/replay/playback", body, OstraSdk::VeJson()).CheckResponse(timeouts.replay);
    } catch (...) {
        throw RequestFailure(__LINE__, kFunction, "Failed to set the replay mode.");
    }
}

void OstraSdkClient::ReadFileBuffer(const std::string& fileName, std::vector<std::uint8_t>& buffer) {
    constexpr const char* kFunction = "ReadFileBuffer";
    InputFile file(fileName.c_str());
    FileFacts facts;
    std::string reason = file.IsOpen() && file.Ask(&facts) ? "" : file.Failure().message();
    if (reason.empty() && facts.size == 0)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction, "%s is empty.", fileName.c_str());
    try {
        if (reason.empty())
            reason = ReadAll(file, facts.size, buffer);
    } catch (const std::bad_alloc&) {
        reason = "there is not enough memory for its " + std::to_string(facts.size) + " bytes";
    }
    if (!reason.empty())
        throw Explained(
            Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction, "Failed to open %s.", fileName.c_str()),
            reason);
}
