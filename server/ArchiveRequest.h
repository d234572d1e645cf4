#pragma once

#include "server/BackupArchive.h"
#include "server/ReplyWriter.h"
#include "server/Sensor.h"

#include <string>

/// Answers "/system/commands/archive": the backup archive of the workspace, read from the disk while it is
/// sent.
class ArchiveRequest final {
  public:
    /// Looks the workspace over, so that a failure can still be told.
    /// @throws RequestError or std::runtime_error when the workspace cannot be read
    explicit ArchiveRequest(const Sensor& sensor);

    /// Sends status 200 and `{"data": <archive>}`. A file that changed since it was looked at cuts the reply.
    void Reply(ReplyWriter& reply) const;

  private:
    [[nodiscard]] static std::string Info(const Sensor& sensor);

    BackupArchive archive;
};
