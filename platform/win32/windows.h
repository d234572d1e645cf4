/// The Win32 calls that the program uses, for systems that are not Windows. Names, types, values and results
/// are those of the real header, so that a source file that includes it is the same on both.
#pragma once

#include <cstdint>
#include <cstdio>

using DWORD = std::uint32_t;
using LCID = DWORD;
using LPCSTR = const char*;
using LPSTR = char*;

using LPCWSTR = const wchar_t*;
using BOOL = int;
using HANDLE = void*;
using errno_t = int;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;

constexpr LCID LOCALE_USER_DEFAULT = 0x400;

struct SYSTEMTIME;
struct SECURITY_ATTRIBUTES;

/// The result of the calling thread's last CreateMutexW or CloseHandle.
DWORD GetLastError();

/// Makes the named mutex of this user, which exists until its handle is closed or the process ends in any
/// way: the kernel holds it. Of any number of concurrent callers, exactly one makes it; each of the others
/// gets a handle, and ERROR_ALREADY_EXISTS from GetLastError.
///
/// It is a lock on the file NAME.lock in each of the folders that OpenLockFolders finds: two callers of one
/// user find each other whatever their environments are. The files are never removed, because a copy that
/// starts meanwhile would lock another one.
///
/// Only null `security`, FALSE for `owned` and a name of up to 100 letters, digits, "-", "_" and "." that
/// does not begin with a dot are supported here.
/// @return null on failure: ERROR_INVALID_PARAMETER or ERROR_INVALID_NAME for other arguments;
///         ERROR_ACCESS_DENIED when no folder has such a file and lock
HANDLE CreateMutexW(const SECURITY_ATTRIBUTES* security, BOOL owned, LPCWSTR name);

/// Closes the handle of a mutex; the mutex ends with the handle that made it.
/// @return FALSE, with ERROR_INVALID_HANDLE, for a null handle
BOOL CloseHandle(HANDLE handle);

/// Opens a file as std::fopen does; programs started from this one do not inherit it.
/// @return 0; the value of errno on failure, when `*file` is null
errno_t fopen_s(std::FILE** file, const char* name, const char* mode);

/// Milliseconds since the system started, modulo 2^32. Never fails.
DWORD GetTickCount();

/// Writes the current local time in the format picture `format` into `text`. Only the picture "HH':'mm':'ss"
/// and a null `time` (the current time) are supported here.
/// @return the characters written, the terminating zero included; 0 on failure (a buffer too small, another
///         picture, a time of the caller's own).
int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text, int capacity);
