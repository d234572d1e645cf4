#include "link/FileUtils.h"

#include "basalt/Exception.h"
#include "cinder/PackFolder.h"
#include "cinder/UnpackFolder.h"
#include "log/Log.h"

#include <new>

namespace {

/// Logged because the operator's next save will not have them.
void LogLeftOut(const std::string& archive, const LeftOut& leftOut) {
    if (leftOut.count == 0)
        return;
    std::string names;
    for (const std::string& name : leftOut.names)
        names += (names.empty() ? "" : ", ") + name;
    if (leftOut.count > static_cast<std::int64_t>(leftOut.names.size()))
        names += ", ...";
    LOG_LINE(INFO) << "Links and special files left out of " << archive << ": " << leftOut.count << " ("
                   << names << ')';
}

/// The same failure under the name of the operation that the operator knows; its reason is logged.
Ve::Exception Reported(int line, const char* function, const Ve::Exception& failure) {
    if (!failure.Reason().empty()) {
        LOG_LINE(INFO) << failure.what() << " - " << failure.Reason();
    }
    return Ve::Exception(line, __FILE__, failure.Status(), function, "%s", failure.what())
        .Because(failure.Reason());
}

} // namespace

void TarCompress(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator) {
    try {
        PackFolder(sourceDirectory, tarFileName, allocator);
    } catch (const Ve::Exception& failure) {
        throw Reported(__LINE__, "TarCompress", failure);
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, "TarCompress", "Failed to allocate memory.");
    }
}

LeftOut TarUncompressReporting(const std::string& tarFileName, const std::string& targetDirectory,
                               bAlloc allocator) {
    try {
        const Unpacking result = UnpackFolder(tarFileName, targetDirectory, allocator);
        LogLeftOut(tarFileName, result.leftOut);
        if (result.end != bERROR_END) {
            LOG_LINE(INFO) << "The archive is damaged - " << result.reason;
            LOG_LINE(ERROR) << '(' << bStatus_Name(result.end) << ") The archive is damaged - "
                            << tarFileName;
        }
        return result.leftOut;
    } catch (const Ve::Exception& failure) {
        throw Reported(__LINE__, "TarUncompress", failure);
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, "TarUncompress", "Failed to allocate memory.");
    }
}

void TarUncompress(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator) {
    static_cast<void>(TarUncompressReporting(tarFileName, targetDirectory, allocator));
}
