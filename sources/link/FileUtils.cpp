#include "link/FileUtils.h"

#include "basalt/Exception.h"
#include "cinder/PackFolder.h"
#include "cinder/UnpackFolder.h"
#include "log/Log.h"

#include <new>

void TarCompress(const std::string& sourceDirectory, const std::string& tarFileName, bAlloc allocator) {
    try {
        PackFolder(sourceDirectory, tarFileName, allocator);
    } catch (const Ve::Exception& failure) {
        throw Ve::Exception(__LINE__, __FILE__, failure.Status(), "TarCompress", "%s", failure.what());
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, "TarCompress", "Failed to allocate memory.");
    }
}

void TarUncompress(const std::string& tarFileName, const std::string& targetDirectory, bAlloc allocator) {
    try {
        const bStatus end = UnpackFolder(tarFileName, targetDirectory, allocator);
        if (end != bERROR_END) {
            LOG_LINE(ERROR) << '(' << bStatus_Name(end) << ") The archive is damaged - " << tarFileName;
        }
    } catch (const Ve::Exception& failure) {
        throw Ve::Exception(__LINE__, __FILE__, failure.Status(), "TarUncompress", "%s", failure.what());
    } catch (const std::bad_alloc&) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_MEMORY, "TarUncompress", "Failed to allocate memory.");
    }
}
