#pragma once

#include <clocale>

/// The character set that libarchive sees on this thread while the object lives, whatever the user's locale
/// is.
class ArchiveLocale {
  public:
    /// For reading: names keep the bytes that the archive has. With a wider character set, names of pax
    /// headers would be brought into composed form, and the file would get another name than it had.
    static ArchiveLocale Bytes() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C", nullptr);
        return ArchiveLocale(locale);
    }

    /// For writing: names are UTF-8, as pax headers have them.
    static ArchiveLocale Utf8() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return ArchiveLocale(locale);
    }

    ArchiveLocale(const ArchiveLocale&) = delete;
    ArchiveLocale& operator=(const ArchiveLocale&) = delete;
    ~ArchiveLocale() { uselocale(before); }

  private:
    /// A locale that the system does not have is null and leaves the thread's own in force.
    explicit ArchiveLocale(locale_t locale) : before(uselocale(locale)) {}

    locale_t before;
};
