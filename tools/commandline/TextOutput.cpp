#include "tools/commandline/TextOutput.h"

#include "tools/commandline/Failure.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

TextOutput::TextOutput(const std::optional<std::string>& file) : name(file.value_or("standard output")) {
    if (!file)
        return;
    target.emplace(*file);
    if (!target->IsOpen())
        Fail();
}

void TextOutput::Write(std::string_view text) {
    if (target)
        target->Write(text);
    else
        failed = std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || failed;
}

void TextOutput::Finish() {
    if (target ? !target->Commit() : std::fflush(stdout) != 0 || failed)
        Fail();
}

void TextOutput::Fail() const {
    const std::error_code reason =
        target ? target->Failure() : std::error_code(errno, std::generic_category());
    throw Failure(ExitCode::Unwritable, name + ": " + reason.message());
}
