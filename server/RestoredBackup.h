#pragma once

#include "cinder/UnpackFolder.h"
#include "cinder/bTar.h"
#include "server/Workspace.h"
#include "wire/CborReader.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

/// A backup archive from a client, unpacked in one pass while the request's body arrives into a folder beside
/// the workspace. The inner workspace archive is unpacked while the outer one is read, so each byte is stored
/// once. The unpacked folder is removed with the object unless it has become the workspace.
class RestoredBackup final {
  public:
    explicit RestoredBackup(Workspace& workspace) : workspace(workspace) {}

    /// Unpacks an archive. Defects are reported later, by PutInPlace, since the request must be read to its
    /// end first.
    void Unpack(OstraSdk::ByteString& bytes);

    /// What happened to the previous content of the workspace.
    struct Replaced {
        LeftOut links; ///< links and special files that it had and the new one does not
        bool isKept = false;
    };

    /// Makes the unpacked folder the workspace.
    /// @throws HttpError with status 422 when the outer or the inner archive is damaged or truncated, has
    ///        unsafe names or links, or holds no workspace; HttpError with status 500 or std::exception when
    ///        the disk fails. The served workspace is unchanged then.
    [[nodiscard]] Replaced PutInPlace();

    /// The replay mode in the archive's "info.json"; nullopt when it has none.
    [[nodiscard]] std::optional<bool> Replay() const { return replay; }

  private:
    void ReadEntries(OstraSdk::ByteString& bytes);
    void ReadEntry(const std::string& name, std::int64_t size);
    void ReadInfo(std::int64_t size);
    void UnpackInner(std::int64_t size);
    [[nodiscard]] bStatus ReadOuter(std::string_view* block) const;
    void CheckUnpacked() const;

    Workspace& workspace;
    std::optional<StagedFolder> staged;
    bOwned<bFile> outerFile;
    bOwned<bTar> outer; ///< destroyed before its file
    std::optional<Unpacking> unpacked;
    std::optional<bool> replay;
    bool infoSeen = false;
    std::exception_ptr failure;
};
