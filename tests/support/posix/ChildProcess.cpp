#include "ChildProcess.h"

#include <csignal>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& output) {
    std::vector<std::string> copies = command;
    std::vector<char*> words;
    for (std::string& word : copies)
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
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : pid(std::exchange(other.pid, -1)) {
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(pid, other.pid);
    return *this;
}

bool ChildProcess::HasEnded() {
    if (pid > 0 && waitpid(pid, nullptr, WNOHANG) == pid)
        pid = -1;
    return pid < 0;
}

void ChildProcess::AskToStop() const {
    if (pid > 0)
        kill(pid, SIGTERM);
}

void ChildProcess::Kill() {
    if (pid > 0)
        kill(pid, SIGKILL);
    Await();
}

int ChildProcess::Await() {
    if (pid < 0)
        return -1;
    int status = 0;
    waitpid(pid, &status, 0);
    pid = -1;
    constexpr int kSignalled = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}
