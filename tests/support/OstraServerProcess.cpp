#include "OstraServerProcess.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A new empty file outside every test's folders.
std::string NewFile() {
    std::string path = "/tmp/ostra-server-XXXXXX";
    const int file = mkstemp(path.data());
    if (file < 0)
        throw std::runtime_error("cannot make a file in /tmp");
    close(file);
    return path;
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
    unlink(output.c_str());
}

std::string OstraServerProcess::Program() {
    return OSTRA_SERVER_PROGRAM;
}

std::string OstraServerProcess::DiscoveryAddress() const {
    return "127.0.0.1:" + std::to_string(discoveryPort);
}

void OstraServerProcess::Start() {
    std::vector<char*> words;
    for (std::string& word : command)
        words.push_back(word.data());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int failure = posix_spawn(&pid, command.front().c_str(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        pid = -1;
        throw std::runtime_error("cannot start " + command.front());
    }
    AwaitPorts();
}

void OstraServerProcess::AwaitPorts() {
    constexpr std::chrono::seconds kPatience{60};
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (AnnouncedPort("discovery ") == 0) {
        const bool ended = waitpid(pid, nullptr, WNOHANG) == pid;
        if (ended)
            pid = -1;
        if (ended || std::chrono::steady_clock::now() > end) {
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

int OstraServerProcess::Await() {
    if (pid < 0)
        return -1;
    int status = 0;
    waitpid(pid, &status, 0);
    pid = -1;
    constexpr int kSignalled = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

int OstraServerProcess::Stop() {
    if (pid > 0)
        kill(pid, SIGTERM);
    return Await();
}

void OstraServerProcess::Kill() {
    if (pid > 0)
        kill(pid, SIGKILL);
    Await();
}

void OstraServerProcess::Restart() {
    if (truncate(output.c_str(), 0) != 0)
        throw std::runtime_error("cannot empty " + output);
    Start();
}

std::vector<std::string> OstraServerProcess::Lines() const {
    std::ifstream file(output);
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
