#pragma once

#include <string>
#include <string_view>

/// A file of an archive on its way to the disk. It has a hidden name (".corvane-" and six letters) until all
/// of it is written, so that a cut file never stands where it would be taken for a whole one, not even after
/// a kill.
class PartialFile {
  public:
    /// @param folder the descriptor of the folder it goes into; becomes this object's
    /// @param name its own name; a file of that name is replaced in the end, anything else is in the way
    PartialFile(int folder, std::string name, unsigned permissions);
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;
    /// Removes what was written unless it was kept.
    ~PartialFile();

    [[nodiscard]] bool IsOpen() const { return descriptor >= 0; }
    [[nodiscard]] bool Write(std::string_view data) const;
    /// Closes the file and gives it its name, unless the system reports late that it is not whole.
    [[nodiscard]] bool Keep();

  private:
    [[nodiscard]] bool NameIsFree() const;

    int folder;
    std::string name;
    std::string hidden;
    int descriptor = -1;
};
