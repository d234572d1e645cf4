#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

/// A folder in memory in which one fuzzer works, from its start to the end of the process: it is the working
/// directory, is empty at first, and the editor's log is discarded. Its name ends with the
/// number of the process, so that the caller can remove what is left over after a finding.
class FuzzFolder {
  public:
    FuzzFolder();
    FuzzFolder(const FuzzFolder&) = delete;
    FuzzFolder& operator=(const FuzzFolder&) = delete;
    ~FuzzFolder();

    /// The full path of the folder.
    [[nodiscard]] const std::string& Path() const { return path; }

  private:
    std::string path;
};

/// One entry of a folder: "file PERMISSIONS CONTENT", "folder PERMISSIONS", "link TARGET" or
/// "other".
using Tree = std::map<std::string, std::string>;

/// Everything below a folder by its relative name, links not followed.
Tree TreeOf(const std::string& folder);

/// Makes or replaces a file.
void Store(const std::string& path, const void* bytes, std::size_t size);
void Store(const std::string& path, const std::string& content);

/// The complete content of a file; empty when it cannot be read.
std::string ContentOf(const std::string& path);

/// The lowest free descriptor number; it rises when an input leaks a descriptor.
int FreeDescriptor();
