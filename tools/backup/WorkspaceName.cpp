#include "tools/backup/WorkspaceName.h"

#include "cinder/TarName.h"
#include "tools/backup/BackupWalk.h"
#include "tools/commandline/Failure.h"

std::string WorkspaceName(const std::string& given) {
    if (!IsConfinedTarName(given) || given.ends_with('/'))
        throw Failure(ExitCode::Misused,
                      "'" + PrintableTarName(given) + "' is no name of a file in a workspace");
    return given.find('/') == std::string::npos ? std::string(kTrackFolder) + "/" + given : given;
}
