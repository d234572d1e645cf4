#pragma once

#include <string>
#include <string_view>

/// One entry as its raw header block describes it. Nothing is checked, so that it can hold false values.
struct TarBlockEntry {
    std::string name;    ///< cut to the 100 bytes of the field
    std::string content; ///< padded to full blocks
    char type = '0';     ///< '0' file, '5' directory, '1' hard link, '2' symbolic link, ...
    unsigned mode = 0644;
    std::string link;    ///< target of a link
    std::string prefix;  ///< ustar's prefix of the name
    long long size = -1; ///< what the header says; -1 for the content's length
    bool gnu = false;    ///< GNU magic in place of ustar's
    bool wrongChecksum = false;
};

/// The blocks with the header's checksum set to the sum of its bytes plus `error`.
std::string WithTarChecksum(std::string blocks, unsigned error = 0);
/// The header block and the padded content.
std::string TarBlocks(const TarBlockEntry& entry);
std::string TarFile(const std::string& name, const std::string& content);
std::string TarFolder(const std::string& name);
std::string TarLink(const std::string& name, char type, const std::string& target);
/// A pax header before an entry; each record is as PaxRecord makes it.
std::string TarPax(const std::string& records);
/// "LEN key=value\n", LEN counting itself; `error` is added to it.
std::string PaxRecord(std::string_view key, std::string_view value, int error = 0);
/// The GNU entry that gives the next entry its long name.
std::string TarGnuLongName(const std::string& name);
/// Two blocks of zeros.
std::string TarEnd();
