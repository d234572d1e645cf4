#pragma once

#include "document/TrackDocument.h"
#include "workflow/AutomaticJournal.h"
#include "workflow/EditJournal.h"
#include "workflow/KeptCopies.h"
#include "workflow/UnsentTracks.h"

#include <string>

/// Protects the operator's work: keeps what the workflows are about to discard, each time just before it
/// would be lost, remembers which saved tracks were not sent, and keeps a journal of unsaved edits. A copy
/// that cannot be made is logged and stops nothing.
class WorkProtection {
  public:
    /// @param document borrowed; it outlives the object
    /// @param keptFolder where copies are kept, an absolute path
    WorkProtection(TrackDocument& document, std::string keptFolder);

    [[nodiscard]] const std::string& Folder() const { return copies.Folder(); }
    /// The tracks of the workspace that were saved and not sent.
    [[nodiscard]] UnsentTracks& Unsent() { return unsent; }

    /// The open track is about to be closed, or its file to be replaced: keeps unsaved paths, each state of
    /// them once.
    void KeepUnsaved();
    /// The unpacked workspace is about to be replaced or removed: keeps its tracks that were not sent.
    void KeepUnsent() { unsent.Keep(); }
    /// A file is about to be deleted, or to be replaced.
    void KeepDeleted(const std::string& file);
    void KeepReplaced(const std::string& file);
    /// A save is about to replace `target`: keeps it when it is a text track.
    void KeepTextOriginal(const std::string& target);

    /// Makes copies of the unsaved edits of editors that crashed.
    void Recover();

  private:
    TrackDocument& document;
    KeptCopies copies;
    UnsentTracks unsent;
    EditJournal journal;
    AutomaticJournal automaticJournal;
    TrackDocument::Revision keptRevision; ///< the unsaved state that was kept last
};
