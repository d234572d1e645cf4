#pragma once

#include "BodySpool.h"
#include "RequestMembers.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bTar.h"

/// A backup archive that a client sent, read in one pass straight from the request's body: the workspace
/// archive inside it is unpacked while the outer one is read, so that no byte is stored twice.
class RestoredBackup final {
  public:
    /// @param range where the archive lies in `body`
    RestoredBackup(const BodySpool& body, const ByteRange& range);

    /// Unpacks the workspace into a fresh folder and looks at everything else in the archive.
    /// @throws RequestError with status 422 when any of it, on either level, is damaged, cut, unsafely named
    /// or
    ///         linked, or no workspace; with 500 when the disk fails. The folder is then of no use.
    void Unpack(const std::string& target);

    /// The replay mode that the archive notes, known once it is unpacked.
    [[nodiscard]] std::optional<bool> Replay() const { return replay; }

  private:
    void ReadEntries(const std::string& target);
    void ReadEntry(const std::string& name, std::int64_t size, const std::string& target);
    void ReadInfo(std::int64_t size);
    void UnpackInner(std::int64_t size, const std::string& target);
    bStatus ReadBody(void* data, std::size_t capacity, std::size_t* count);
    bStatus ReadOuter(void* data, std::size_t capacity, std::size_t* count);

    const BodySpool& body;
    ByteRange left;         ///< of the body, still to be read
    bOwned<bTar> outer;     ///< while Unpack runs
    std::string_view block; ///< of the outer archive's entry, still to be handed on
    std::optional<bool> replay;
    bool infoSeen = false;
    bool workspaceSeen = false;
};
