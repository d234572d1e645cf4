#pragma once

#include <cstdio>
#include <exception>
#include <sstream>
#include <string>

/// The time stamp of a log line: the local time to the second, a point, and the milliseconds elapsed since
/// the first stamp of the run, modulo 1000 ("14:03:07.042"). The fraction is not that of wall-clock time: it
/// advances evenly from line to line, and turns negative after 2^31 milliseconds. "Error in NowTime()" when
/// the system cannot give the time.
std::string NowTime();

/// Where finished log lines go: one stream for the process.
class Output2FILE {
  public:
    /// The stream: standard error until another is assigned; null switches the log off.
    static std::FILE*& Target();

    /// Writes the text and flushes at once, so that a line survives whatever comes next.
    static void Write(const std::string& text);
};

/// How much a log line matters; a higher value matters less.
enum LogLevel { ERROR, WARNING, INFO, DEBUG, DEBUG1, DEBUG2, DEBUG3, DEBUG4 };

/// The level's name as written in a log line.
const char* LogLevelName(LogLevel level);

/// One line of the log: created for one statement, written at once when the statement ends. `OutputPolicy`
/// needs `static void Write(const std::string&)`.
template<typename OutputPolicy>
class Log {
  public:
    Log() = default;
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    /// Without the memory for it the line is lost, not the program.
    virtual ~Log() {
        try {
            line << std::endl;
            OutputPolicy::Write(line.str());
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): nowhere else to report it
        }
    }

    /// Writes the line's head (time, level, a tab for each level beyond DEBUG) and returns the stream for the
    /// message.
    std::ostringstream& Line(LogLevel level) {
        line << NowTime() << ' ' << LogLevelName(level) << ": ";
        if (level > DEBUG)
            line << std::string(static_cast<std::size_t>(level - DEBUG), '\t');
        return line;
    }

    /// The highest level that is written.
    static LogLevel& ReportingLevel() {
        static LogLevel level = DEBUG4;
        return level;
    }

  private:
    std::ostringstream line;
};

using FILELog = Log<Output2FILE>;

/// LOG_LINE(ERROR) << "text"; evaluates and writes nothing when the level is not reported or there is no
/// target.
#define LOG_LINE(level)                                                                                      \
    if ((level) > FILELog::ReportingLevel() || Output2FILE::Target() == nullptr) {                           \
    } else                                                                                                   \
        FILELog().Line(level)
