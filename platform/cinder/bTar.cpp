#include "cinder/bTar.h"

#include "cinder/TarReader.h"
#include "cinder/TarWriter.h"

namespace {

/// Makes and opens a reader or a writer; one that cannot be opened is destroyed.
template<typename Archive>
bStatus Construct(bTar** tar, bFile* file, bAlloc allocator) {
    Archive* made = nullptr;
    if (const bStatus status = bObject_New(&made, allocator, file); status != bOK)
        return status;
    const bStatus opened = made->Open();
    if (opened == bOK)
        *tar = made;
    else
        xbObject_DestroyImpl(made);
    return opened;
}

} // namespace

bStatus bTar_Construct(bTar** tar, bFile* file, int mode, bAlloc allocator) {
    if (tar == nullptr || file == nullptr)
        return bERROR_PARAMETER;
    *tar = nullptr;
    if (mode == bFile_READ)
        return Construct<TarReader>(tar, file, allocator);
    if (mode == bFile_WRITE)
        return Construct<TarWriter>(tar, file, allocator);
    return bERROR_PARAMETER;
}

bStatus bTar_BeginWrite(bTar* tar, const char* name, int kind, std::int64_t size) {
    auto* const writer = dynamic_cast<TarWriter*>(tar);
    return writer == nullptr ? bERROR_PARAMETER : writer->BeginWrite(name, kind, size);
}

void bTar_Describe(bTar* tar, const FileFacts& facts) {
    if (auto* const writer = dynamic_cast<TarWriter*>(tar))
        writer->Describe(facts);
}

bStatus bTar_WriteBlock(bTar* tar, std::string_view block) {
    auto* const writer = dynamic_cast<TarWriter*>(tar);
    return writer == nullptr ? bERROR_PARAMETER : writer->WriteBlock(block);
}

bStatus xbTar_WriteFile(bTar* tar, const char* name, bFile* file, std::int64_t size) {
    auto* const writer = dynamic_cast<TarWriter*>(tar);
    return writer == nullptr ? bERROR_PARAMETER : writer->WriteFile(name, file, size);
}

bStatus bTar_BeginRead(bTar* tar, char* name, std::size_t capacity, int* kind, std::int64_t* size) {
    auto* const reader = dynamic_cast<TarReader*>(tar);
    return reader == nullptr ? bERROR_PARAMETER : reader->BeginRead(name, capacity, kind, size);
}

bStatus bTar_ReadBlock(bTar* tar, std::string_view* block) {
    auto* const reader = dynamic_cast<TarReader*>(tar);
    return reader == nullptr ? bERROR_PARAMETER : reader->ReadBlock(block);
}

const FileFacts& bTar_Facts(const bTar* tar) {
    static const FileFacts kNone;
    const auto* const reader = dynamic_cast<const TarReader*>(tar);
    return reader == nullptr ? kNone : reader->Facts();
}

const char* bTar_LinkTarget(const bTar* tar) {
    const auto* const reader = dynamic_cast<const TarReader*>(tar);
    return reader == nullptr ? nullptr : reader->LinkTarget();
}

std::string bTar_Reason(const bTar* tar) {
    const auto* const reader = dynamic_cast<const TarReader*>(tar);
    return reader == nullptr ? std::string() : reader->Reason();
}

const LeftOut& bTar_LeftOut(const bTar* tar) {
    static const LeftOut kNone;
    const auto* const reader = dynamic_cast<const TarReader*>(tar);
    return reader == nullptr ? kNone : reader->Links();
}
