#include "basalt/ProcessStart.h"

#include "basalt/windows/WideText.h"

#include <csignal>

#include <windows.h>

#include <shellapi.h>

/// What `main` is given is in the code page of the user, which may have no letters for the names of files.
std::vector<std::string> CommandLineWords(int /*count*/, char** /*words*/) {
    int count = 0;
    std::vector<std::string> found;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; words != nullptr && i < count; ++i)
        found.push_back(Utf8Of(words[i]).value_or(std::string()));
    LocalFree(words);
    return found;
}

/// Ctrl+Break, and the closing of the console, come as one of their own.
std::vector<int> StopSignals() {
    return {SIGINT, SIGTERM, SIGBREAK};
}
