#pragma once

#include <archive.h>
#include <archive_entry.h>

// How the names of entries get into libarchive and out of it. Inside they are UTF-8. Where the system's calls
// take bytes, the bytes of an archive are kept, whatever they are; where they take wide characters,
// libarchive has the names as these, and bytes that are no UTF-8 cannot be a name.

/// The character set that libarchive sees on this thread while the object lives, whatever the user's locale
/// is.
class ArchiveLocale {
  public:
    /// For reading: names keep the bytes that the archive has. With a wider character set, names of pax
    /// headers would be brought into composed form, and the file would get another name than it had.
    static ArchiveLocale Bytes();
    /// For writing: names are UTF-8, as pax headers have them.
    static ArchiveLocale Utf8();

    ArchiveLocale(const ArchiveLocale&) = delete;
    ArchiveLocale& operator=(const ArchiveLocale&) = delete;
    ~ArchiveLocale();

  private:
    explicit ArchiveLocale(void* locale);

    void* before;
};

/// To be called for an archive that has its format and is not open yet. @return false without the memory for
/// it
[[nodiscard]] bool PrepareToReadNames(archive* handle);
[[nodiscard]] bool PrepareToWriteNames(archive* handle);
/// To be called for an entry that was read: archive_entry_pathname and archive_entry_hardlink give its names
/// then.
/// @return false when a name cannot be one here
[[nodiscard]] bool TakeNames(archive_entry* entry);
/// Whether an entry is used of which libarchive warns that its names are not of their character set.
[[nodiscard]] bool TakesNamesOfAnyBytes();
/// Gives an entry that is written its name.
void SetName(archive_entry* entry, const char* name);
