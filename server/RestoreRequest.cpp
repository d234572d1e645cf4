#include "RestoreRequest.h"

#include "ReplayMode.h"
#include "RestoredBackup.h"
#include "Workspace.h"

#include <utility>

void RestoreRequest::Run(const BodySpool& body, const ByteRange& archive) const {
    StagedFolder staged = sensor.workspace.Stage();
    RestoredBackup backup(body, archive);
    backup.Unpack(staged.Tree());
    sensor.workspace.Replace(std::move(staged));
    sensor.replay.Restored(backup.Replay());
}
