#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

/// A program that a test started, with both outputs in a file.
class ChildProcess {
  public:
    /// None yet.
    ChildProcess() = default;
    /// @param command the program and its arguments, in UTF-8
    /// @param output the file that standard output and error are appended to
    /// @throws std::runtime_error when it cannot be started
    ChildProcess(const std::vector<std::string>& command, const std::string& output);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    /// Kills what still runs.
    ~ChildProcess() { Kill(); }

    [[nodiscard]] pid_t Pid() const { return pid; }
    /// Whether it runs no longer; true when there is none.
    [[nodiscard]] bool HasEnded();
    /// Asks the program to stop, as an operator would: SIGTERM; on Windows Ctrl+Break.
    void AskToStop() const;
    /// Kills the program in the middle of whatever it does, and waits.
    void Kill();
    /// Waits for the end. @return the exit code; on POSIX systems 128 + the signal that ended it; -1 when
    /// there is none
    int Await();

  private:
    pid_t pid = -1;
    [[maybe_unused]] std::intptr_t handle = 0; ///< on Windows: keeps the number from being reused
};
