#pragma once

#include <filesystem>
#include <string>

/// A path in UTF-8 for the standard library.
std::filesystem::path Utf8Path(const std::string& path);

/// A fresh folder, with a blank and non-ASCII letters in its name, that is the working directory while the
/// object lives and is removed with it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    /// The full path of a name in the folder.
    [[nodiscard]] std::string Path(const std::string& name) const { return folder + "/" + name; }

  private:
    std::string folder;
    std::filesystem::path before;
};

/// The complete content of a file; empty when it cannot be read.
std::string FileContent(const std::string& path);

/// Creates or replaces a file.
void WriteFile(const std::string& path, const std::string& content);

/// The path of a file in tests/data.
std::string TestData(const std::string& name);
