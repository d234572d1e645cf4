#pragma once

#include <exception>

/// Logs a caught exception's text behind a tag, at ERROR. Throws nothing: when there is no memory even for
/// the line, the result of the operation has to do.
void LogException(const char* tag, const char* text) noexcept;

/// Does the work of an operation that must not throw. @return the work's result; `failure` when it threw,
/// with the exception's text logged behind the tag
template<typename Work>
int Guarded(const char* tag, Work&& work, int failure = 1) noexcept {
    try {
        return work();
    } catch (const std::exception& exception) {
        LogException(tag, exception.what());
    } catch (...) {
        LogException(tag, "unknown exception");
    }
    return failure;
}
