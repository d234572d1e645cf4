#pragma once

#include "log/NowTime.h"
#include "log/Output2FILE.h"

#include <exception>
#include <sstream>
#include <string>

/// How much a log line matters; a higher value matters less.
enum LogLevel { ERROR, WARNING, INFO, DEBUG, DEBUG1, DEBUG2, DEBUG3, DEBUG4 };

/// The level's name as it stands in a log line.
const char* LogLevelName(LogLevel level);

/// One line of the log: made for one statement, written as a whole when the statement ends.
/// `OutputPolicy` needs `static void Write(const std::string&)`.
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
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): there is no other place to tell it
        }
    }

    /// Writes the line's head (time, level, a tab for each level beyond DEBUG) and hands out the stream for
    /// the message.
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
