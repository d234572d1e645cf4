#pragma once

#include "basalt/FolderHandle.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

/// Where this user's kept copies are: the folder that the environment variable CORVANE_KEPT names, else
/// "kept" in the user's data folder of the application. An absolute path; empty when the user has no data
/// folder.
std::string DefaultKeptFolder();

/// Opens the folder of kept copies. A missing folder is created with its missing parents, private to this
/// user. @throws std::system_error with the system's reason when that fails
FolderHandle OpenKeptFolder(const std::string& path);

/// Opens the folder of kept copies if there is one. @throws std::system_error when that fails
std::optional<FolderHandle> OpenExistingKeptFolder(const std::string& path);

/// The content of a file in the folder; none if there is no such file. @throws std::system_error
std::optional<std::string> ReadKeptFile(const FolderHandle& folder, const std::string& name);

/// Removes a file if there is one. @throws std::system_error
void RemoveKeptFile(const FolderHandle& folder, const std::string& name);

/// Whether a file survives only the end of the program, or a power failure too.
enum class Durability { OfProcess, OfPower };

/// Writes the content of a file with a function that is given the bytes, piece by piece.
using WriteContent = std::function<void(const std::function<void(const void* data, std::size_t size)>& sink)>;

/// Puts a private file in the folder, in place of one that has the name, atomically. @throws
/// std::system_error
void WriteKeptFile(const FolderHandle& folder, const std::string& name, Durability durability,
                   const WriteContent& writeContent);
