#include "OstraServerProcess.h"

#include "TemporaryFolder.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;

namespace {

/// A new empty file outside every test's folders.
std::string NewFile() {
    std::random_device random;
    const fs::path path =
        fs::temp_directory_path() / ("ostra-server-" + std::to_string(random()) + std::to_string(random()));
    if (!std::ofstream(path))
        throw std::runtime_error("cannot make a file for the server's output");
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

} // namespace

OstraServerProcess::OstraServerProcess(const std::string& workspace, std::vector<std::string> options)
    : command{Program(), "--workspace", workspace, "--port", "0", "--discovery-port", "0"},
      output(NewFile()) {
    command.insert(command.end(), options.begin(), options.end());
    Start();
}

OstraServerProcess::~OstraServerProcess() {
    Kill();
    std::error_code ignored;
    fs::remove(Utf8Path(output), ignored);
}

std::string OstraServerProcess::Program() {
    const char* const other = std::getenv("CORVANE_SERVER_PROGRAM");
    return other != nullptr ? other : OSTRA_SERVER_PROGRAM;
}

std::string OstraServerProcess::DiscoveryAddress() const {
    return "127.0.0.1:" + std::to_string(discoveryPort);
}

void OstraServerProcess::Start() {
    process = ChildProcess(command, output);
    AwaitPorts();
}

void OstraServerProcess::AwaitPorts() {
    constexpr std::chrono::seconds kPatience{60};
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (AnnouncedPort("discovery ") == 0) {
        if (process.HasEnded() || std::chrono::steady_clock::now() > end) {
            Kill();
            std::string said;
            for (const std::string& line : Lines())
                said += line + "\n";
            throw std::runtime_error("the server does not start: " + said);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    controlPort = AnnouncedPort("control ");
    discoveryPort = AnnouncedPort("discovery ");
}

std::uint16_t OstraServerProcess::AnnouncedPort(const std::string& what) const {
    for (const std::string& line : Lines()) {
        if (line.rfind(what, 0) == 0)
            return static_cast<std::uint16_t>(std::strtoul(line.c_str() + line.find(':') + 1, nullptr, 10));
    }
    return 0;
}

int OstraServerProcess::Stop() {
    process.AskToStop();
    return process.Await();
}

void OstraServerProcess::Kill() {
    process.Kill();
}

void OstraServerProcess::Restart() {
    std::error_code failure;
    fs::resize_file(Utf8Path(output), 0, failure);
    if (failure)
        throw std::runtime_error("cannot empty " + output);
    Start();
}

std::vector<std::string> OstraServerProcess::Lines() const {
    std::ifstream file(Utf8Path(output));
    std::vector<std::string> lines;
    // A line still being written has no end yet and is read the next time.
    for (std::string line; std::getline(file, line) && !file.eof();)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> OstraServerProcess::Requests() const {
    std::vector<std::string> requests;
    for (std::string& line : Lines()) {
        if (!line.starts_with("control ") && !line.starts_with("discovery ") && !line.starts_with("#"))
            requests.push_back(std::move(line));
    }
    return requests;
}

std::vector<std::string> OstraServerProcess::Calls() const {
    std::vector<std::string> calls;
    for (const std::string& request : Requests())
        calls.push_back(request.substr(0, request.find(' ', request.find(' ') + 1)));
    return calls;
}
