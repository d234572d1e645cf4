#include "ChildProcess.h"

#include "TemporaryFolder.h"

#include <stdexcept>
#include <utility>

#include <windows.h>

namespace {

HANDLE HandleOf(std::intptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

/// One line that the system takes apart again. No word has a quote in it, or a backslash at its end.
std::wstring CommandLine(const std::vector<std::string>& command) {
    std::wstring line;
    for (const std::string& word : command)
        line += (line.empty() ? L"\"" : L" \"") + Utf8Path(word).wstring() + L"\"";
    return line;
}

HANDLE OpenToAppend(const std::string& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileW(Utf8Path(path).c_str(), FILE_APPEND_DATA,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& output) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = OpenToAppend(output);
    start.hStdError = start.hStdOutput;
    PROCESS_INFORMATION started{};
    std::wstring line = CommandLine(command);
    // A group of its own can be asked to stop without this process.
    const BOOL succeeded = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                                          CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &start, &started);
    CloseHandle(start.hStdOutput);
    if (succeeded == FALSE)
        throw std::runtime_error("cannot start " + command.front());
    CloseHandle(started.hThread);
    pid = static_cast<pid_t>(started.dwProcessId);
    handle = reinterpret_cast<std::intptr_t>(started.hProcess);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid(std::exchange(other.pid, -1)), handle(std::exchange(other.handle, 0)) {
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(pid, other.pid);
    std::swap(handle, other.handle);
    return *this;
}

bool ChildProcess::HasEnded() {
    if (handle != 0 && WaitForSingleObject(HandleOf(handle), 0) == WAIT_OBJECT_0)
        Await();
    return handle == 0;
}

void ChildProcess::AskToStop() const {
    if (handle != 0)
        GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, static_cast<DWORD>(pid));
}

void ChildProcess::Kill() {
    constexpr UINT kKilled = 137;
    if (handle != 0)
        TerminateProcess(HandleOf(handle), kKilled);
    Await();
}

int ChildProcess::Await() {
    if (handle == 0)
        return -1;
    WaitForSingleObject(HandleOf(handle), INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(HandleOf(handle), &code);
    CloseHandle(HandleOf(handle));
    handle = 0;
    pid = -1;
    return static_cast<int>(code);
}
