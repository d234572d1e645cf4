/// The Win32 calls that the program uses, for systems that are not Windows.
/// Names, types, values and results are those of the real header, so that a source including it reads the
/// same on both.
#pragma once

#include <cstdint>
#include <cstdio>

using DWORD = std::uint32_t;
using LCID = DWORD;
using LPCSTR = const char*;
using LPSTR = char*;

constexpr LCID LOCALE_USER_DEFAULT = 0x400;

struct SYSTEMTIME;

/// Milliseconds since the system started, modulo 2^32. Never fails.
DWORD GetTickCount();

/// Writes the current local time in the format picture `format` into `text`.
/// Only the picture "HH':'mm':'ss" and a null `time` (the current time) are known here.
/// @return the characters written, the terminating zero included; 0 on failure (a buffer too small, another
///         picture, a time of the caller's own).
int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR format, LPSTR text, int capacity);
