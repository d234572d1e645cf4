#pragma once

/// What the platform's calls return: 1 for success, another value for failure.
using bStatus = int;

constexpr bStatus bOK = 1;
constexpr bStatus bERROR_MEMORY = -1;          ///< memory could not be allocated
constexpr bStatus bERROR_PARAMETER = -2;       ///< an argument that the call cannot work with
constexpr bStatus bERROR_FORMAT = -3;          ///< data that breaks the rules of its format, or is truncated
constexpr bStatus bERROR_END = -4;             ///< nothing more to read: the regular end
constexpr bStatus bERROR_TOO_LONG = -5;        ///< a name longer than its buffer
constexpr bStatus bERROR_LIMIT = -6;           ///< more than a limit allows
constexpr bStatus bERROR_TRACK = -984;         ///< a track file that cannot be read
constexpr bStatus bERROR_NOT_CONNECTED = -988; ///< no server is connected
constexpr bStatus bERROR_TIMEOUT = -989;       ///< a server did not answer in time
constexpr bStatus bERROR_CONNECTION = -990;    ///< a server that cannot be reached, or that disconnected
constexpr bStatus bERROR_REFUSED = -991;       ///< a server answered that it failed
constexpr bStatus bERROR_FILE = -997;    ///< cannot be opened, is empty, a missing source, or not a directory
constexpr bStatus bERROR_REQUEST = -998; ///< a server request failed
constexpr bStatus bERROR_NOT_FOUND = -999; ///< a file that does not exist

/// The readable name of a status; any number gets one. The string is valid until the thread's next call.
const char* bStatus_Name(bStatus status);
