#include "cinder/EntryNames.h"

#include "basalt/windows/WideText.h"

// Independent of the locale: libarchive is given the character set of the archive, and wide names.

namespace {

constexpr const char* kUtf8 = "hdrcharset=UTF-8";

} // namespace

ArchiveLocale ArchiveLocale::Bytes() {
    return ArchiveLocale(nullptr);
}

ArchiveLocale ArchiveLocale::Utf8() {
    return ArchiveLocale(nullptr);
}

ArchiveLocale::ArchiveLocale(void* locale) : before(locale) {
}

ArchiveLocale::~ArchiveLocale() {
    static_cast<void>(before);
}

bool PrepareToReadNames(archive* handle) {
    return archive_read_set_options(handle, kUtf8) == ARCHIVE_OK;
}

bool PrepareToWriteNames(archive* handle) {
    return archive_write_set_options(handle, kUtf8) == ARCHIVE_OK;
}

bool TakeNames(archive_entry* entry) {
    const wchar_t* const path = archive_entry_pathname_w(entry);
    const wchar_t* const link = archive_entry_hardlink_w(entry);
    const std::optional<std::string> name = Utf8Of(path == nullptr ? L"" : path);
    const std::optional<std::string> target = Utf8Of(link == nullptr ? L"" : link);
    if (!name || !target)
        return false;
    archive_entry_set_pathname(entry, name->c_str()); // bytes that are set are given back as they are
    if (link != nullptr)
        archive_entry_set_hardlink(entry, target->c_str());
    return true;
}

bool TakesNamesOfAnyBytes() {
    return false;
}

void SetName(archive_entry* entry, const char* name) {
    archive_entry_copy_pathname_w(entry, WideOf(name).value_or(std::wstring()).c_str());
}
