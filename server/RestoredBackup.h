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

/// A backup archive that a client sends, unpacked beside the workspace in one pass while the request's body
/// arrives: the workspace archive inside it is unpacked while the outer one is read, so that each byte is
/// stored once. What was unpacked is removed with the object unless it was put in place.
class RestoredBackup final {
  public:
    explicit RestoredBackup(Workspace& workspace) : workspace(workspace) {}

    /// Unpacks an archive. What is wrong with it is reported by PutInPlace: first the whole request has to be
    /// read.
    void Unpack(OstraSdk::ByteString& bytes);

    /// What happened to the content that was the workspace before.
    struct Replaced {
        LeftOut links; ///< what it had beside files and folders, and the new one does not have
        bool isKept = false;
    };

    /// Puts what was unpacked in the workspace's place.
    /// @throws HttpError with status 422 when any of the archive, on either level, is damaged, cut, unsafely
    ///         named or linked, or no workspace; HttpError with status 500 or std::exception when the disk
    ///         fails. The served workspace is as before then.
    [[nodiscard]] Replaced PutInPlace();

    /// The replay mode that the archive notes.
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
    bOwned<bTar> outer; ///< goes before its file
    std::optional<Unpacking> unpacked;
    std::optional<bool> replay;
    bool infoSeen = false;
    std::exception_ptr failure;
};
