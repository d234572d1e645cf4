#pragma once

#include "server/CborCursor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cinder/bTar.h"

/// A backup archive that a client sends, read in one pass while the request's body arrives: the workspace
/// archive inside it is unpacked while the outer one is read, so that each byte is stored once.
class RestoredBackup final {
  public:
    /// @param body stands before the archive's `size` bytes
    RestoredBackup(CborCursor& body, std::uint64_t size) : body(body), left(size) {}

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
    bStatus ReadBody(char* room, std::size_t capacity, std::string_view* block);
    bStatus ReadOuter(std::string_view* block);

    CborCursor& body;
    std::uint64_t left; ///< bytes of the archive that are still in the body
    bOwned<bTar> outer; ///< while Unpack runs
    std::optional<bool> replay;
    bool infoSeen = false;
    bool workspaceSeen = false;
};
