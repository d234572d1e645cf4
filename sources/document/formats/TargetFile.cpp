#include "document/formats/TargetFile.h"

#include "log/Log.h"

int CommitTarget(AtomicFile& file, const std::string& path) {
    if (file.Commit())
        return kWritten;
    LOG_LINE(ERROR) << "Could not write file (" << path << ")";
    return kTargetNotWritable;
}
