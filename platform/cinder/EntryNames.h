#pragma once

#include <archive.h>
#include <archive_entry.h>

// How the names of entries get into libarchive and out of it. In this program they are UTF-8. Where the
// system's calls take bytes, the bytes of an archive are kept, whatever they are; where they take wide
// characters, so does libarchive, and bytes that are not UTF-8 cannot be a name.

/// The character set that libarchive sees on this thread while the object lives, whatever the user's locale
/// is.
class ArchiveLocale {
  public:
    /// For reading: names keep the bytes that the archive has. With a wider character set, names of pax
    /// headers would be normalised (NFC), and the file would get another name than it had.
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

/// To be called for an archive that has its format and is not open yet. @return false without memory
[[nodiscard]] bool PrepareToReadNames(archive* handle);
[[nodiscard]] bool PrepareToWriteNames(archive* handle);
/// To be called for an entry that was read; then archive_entry_pathname and archive_entry_hardlink return its
/// names.
/// @return false when a name is not possible on this system
[[nodiscard]] bool TakeNames(archive_entry* entry);
/// Whether an entry is accepted when libarchive warns that its names are not in their character set.
[[nodiscard]] bool TakesNamesOfAnyBytes();
/// Sets the name of an entry that is written.
void SetName(archive_entry* entry, const char* name);
