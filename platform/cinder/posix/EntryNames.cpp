#include "cinder/EntryNames.h"

#include <clocale>

ArchiveLocale ArchiveLocale::Bytes() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C", nullptr);
    return ArchiveLocale(locale);
}

ArchiveLocale ArchiveLocale::Utf8() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return ArchiveLocale(locale);
}

/// A locale that the system does not have is null; the thread's own then stays in effect.
ArchiveLocale::ArchiveLocale(void* locale) : before(uselocale(static_cast<locale_t>(locale))) {
}

ArchiveLocale::~ArchiveLocale() {
    uselocale(static_cast<locale_t>(before));
}

bool PrepareToReadNames(archive* /*handle*/) {
    return true;
}

bool PrepareToWriteNames(archive* /*handle*/) {
    return true;
}

bool TakeNames(archive_entry* /*entry*/) {
    return true;
}

bool TakesNamesOfAnyBytes() {
    return true;
}

void SetName(archive_entry* entry, const char* name) {
    archive_entry_set_pathname(entry, name);
}
