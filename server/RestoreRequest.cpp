#include "server/RestoreRequest.h"

#include "server/ReplayMode.h"
#include "server/RestoredBackup.h"

#include <utility>

void RestoreRequest::Unpack(CborCursor& body, std::uint64_t size) {
    try {
        staged.emplace(sensor.workspace.Stage());
        RestoredBackup backup(body, size);
        backup.Unpack(staged->Tree());
        replay = backup.Replay();
    } catch (...) {
        failure = std::current_exception();
        staged.reset(); // a full disk has its room again while the rest arrives
    }
}

void RestoreRequest::PutInPlace() {
    if (failure)
        std::rethrow_exception(failure);
    sensor.workspace.Replace(std::move(staged.value()));
    sensor.replay.Restored(replay);
}
