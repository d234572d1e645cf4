#pragma once

#include "basalt/bFile.h"
#include "basalt/bObject.h"
#include "basalt/bStatus.h"
#include "cinder/TarName.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// A tar archive in an open file. Written as ustar, with pax headers where a name or a size needs them; only
/// ustar, pax and GNU tar are read. The file is borrowed and must outlive the archive.
class bTar : public bObject {
  public:
    using bObject::bObject;
};

constexpr int bTar_FILE = 0;      ///< kind of an entry that has data
constexpr int bTar_DIRECTORY = 1; ///< kind of an entry that is a directory

/// The buffer size for an entry's name, the terminating zero included.
constexpr std::size_t bTar_NAME_SIZE = 512;

/// The limit on entries, both written and read.
constexpr std::int64_t bTar_MOST_ENTRIES = 1'000'000;

/// Opens an archive on `file`, in the mode in which the file was opened (bFile_READ or bFile_WRITE).
/// Destroying an archive that is written adds the end mark, whose status is the result of
/// xbObject_DestroyImpl; after a failed write nothing is added.
/// @return 1; bERROR_PARAMETER; bERROR_FILE; bERROR_MEMORY.
bStatus bTar_Construct(bTar** tar, bFile* file, int mode, bAlloc allocator);

/// Sets the permissions and the time of the next entry that bTar_BeginWrite writes; without this call they
/// are those of a new file or directory, and 1970.
void bTar_Describe(bTar* tar, const FileFacts& facts);

/// Writes the header of an entry: of a directory, or of a file whose data bTar_WriteBlock writes next.
/// @param name relative, "/" as the separator, none at either end
/// @return 1; bERROR_TOO_LONG for a name too long for readers; bERROR_PARAMETER for a name that
///         readers refuse, another kind, or a size that does not fit the kind; bERROR_LIMIT; bERROR_FILE,
///         also when the data of the entry before is not complete.
bStatus bTar_BeginWrite(bTar* tar, const char* name, int kind, std::int64_t size);

/// Appends to the data of the current entry. @return 1; bERROR_FILE, also for more data than the header
/// declares.
bStatus bTar_WriteBlock(bTar* tar, std::string_view block);

/// Writes one file: the header, with the file's permissions and time, and all `size` bytes of `file`.
/// @return as bTar_BeginWrite; also bERROR_FILE when the file has another size, or is changed meanwhile.
///         After a failure the archive is incomplete and cannot be finished.
bStatus xbTar_WriteFile(bTar* tar, const char* name, bFile* file, std::int64_t size);

/// Goes to the next entry that is a file, a directory or a hard link (see bTar_LinkTarget); symbolic links,
/// devices and the like are omitted. The unread rest of the previous entry is skipped.
/// @param name gets the entry's name as the archive has it, a directory's without "/" at the end
/// @param size gets the size in the header; bTar_ReadBlock checks whether the archive holds that much
/// @return 1; bERROR_END at a regular end; bERROR_FORMAT when the archive is damaged, is not a tar archive,
///         or ends without its end mark; bERROR_TOO_LONG for a name that does not fit, `name` then holds its
///         beginning for a message; bERROR_LIMIT; bERROR_FILE; bERROR_MEMORY.
bStatus bTar_BeginRead(bTar* tar, char* name, std::size_t capacity, int* kind, std::int64_t* size);

/// Reads the next data of the current entry. Holes of a sparse file are read as zeros.
/// @param block gets the next bytes; they are valid until the next call for this archive
/// @return 1 with at least one byte; bERROR_END after the last one; bERROR_FORMAT when the archive cannot
///         hold, or does not hold, as much as its header says.
bStatus bTar_ReadBlock(bTar* tar, std::string_view* block);

/// The permissions, within 0777, and the time of the current entry.
const FileFacts& bTar_Facts(const bTar* tar);

/// Where the current entry is a hard link: the name that it refers to, as the archive has it. Such an entry
/// is of the kind bTar_FILE and has no data of its own.
/// @return null when the entry is none
const char* bTar_LinkTarget(const bTar* tar);

/// What was wrong where reading ended or failed, and at which byte of the archive.
std::string bTar_Reason(const bTar* tar);

/// The entries that were omitted so far.
const LeftOut& bTar_LeftOut(const bTar* tar);
