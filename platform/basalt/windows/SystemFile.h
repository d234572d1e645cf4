#pragma once

#include "basalt/FileDescriptor.h"
#include "basalt/FileFacts.h"

#include <string>

#include <windows.h>
#include <winternl.h>

// The calls that the classes of this folder are made of. Each that fails leaves its reason to LastError.

/// Of an open file or folder, for the system's calls.
[[nodiscard]] HANDLE HandleOf(int number);
/// Gives a handle into the keeping of a FileDescriptor; what is no handle gives -1.
[[nodiscard]] int NumberOf(HANDLE handle);

/// How something in a folder is opened or made.
struct Opening {
    ACCESS_MASK access = 0;        ///< beside asking for facts and waiting
    ULONG disposition = FILE_OPEN; ///< whether it has to exist
    ULONG options = 0;             ///< what it has to be
};

/// Opens or makes what has this bare name in a folder; "." is the folder itself. A link is opened itself, and
/// never followed. A name is the name with its letters: one that differs in case, and a short form of a long
/// name, name nothing. Names that are none for a file (see IsOrdinaryName) are refused as invalid.
[[nodiscard]] HANDLE OpenIn(HANDLE folder, const std::string& name, const Opening& opening);
/// Opens what a path leads to. @param flags those of CreateFileW
[[nodiscard]] HANDLE OpenAt(const std::string& path, DWORD access, DWORD flags);

/// What has the name in a folder, a link itself.
/// @return false also, with the reason that the file exists, when another form of the name is there
[[nodiscard]] bool AskIn(HANDLE folder, const std::string& name, FileFacts* facts);
[[nodiscard]] bool AskHandle(HANDLE handle, FileFacts* facts);
/// The same from an entry of a folder's list.
[[nodiscard]] FileFacts FactsOf(const FILE_ID_BOTH_DIR_INFO& entry);

/// Gives an open file or folder the time of modification, and a file its read-only mark; there are no other
/// permissions.
[[nodiscard]] bool Describe(HANDLE handle, const FileFacts& facts);

/// Gives an open file another name in a folder. @param access the handle has to allow DELETE
[[nodiscard]] bool Rename(HANDLE file, HANDLE folder, const std::string& name, bool replace);
/// Removes an open file or an empty folder, even one that is marked as read-only.
[[nodiscard]] bool Remove(HANDLE handle);
/// What Remove needs of a handle.
constexpr ACCESS_MASK kRemoving = DELETE | FILE_WRITE_ATTRIBUTES;
