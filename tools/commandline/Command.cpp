#include "tools/commandline/Command.h"

#include "tools/commandline/Progress.h"

#include "basalt/SystemCalls.h"

#include <algorithm>
#include <cstdio>
#include <optional>

ExitCode ForEachFile(const std::string& command, const std::vector<std::string>& files,
                     const std::function<ExitCode(const std::string& file)>& work) {
    ExitCode result = ExitCode::Done;
    std::optional<Progress> progress;
    if (!IsTerminal(stdout)) // otherwise the printed results show the progress
        progress.emplace("corvane-track " + command);
    std::int64_t done = 0;
    for (const std::string& file : files) {
        if (progress)
            progress->Update(done++, static_cast<std::int64_t>(files.size()));
        try {
            result = std::max(result, work(file));
        } catch (const Failure& failure) {
            if (failure.Code() == ExitCode::Unwritable)
                throw;
            if (progress)
                progress->Clear();
            std::fprintf(stderr, "corvane-track %s: %s\n", command.c_str(), failure.what());
            result = std::max(result, failure.Code());
        }
    }
    return result;
}
