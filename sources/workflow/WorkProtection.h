#pragma once

#include "document/TrackDocument.h"

class KeptCopies;
class UnsentTracks;

/// Keeps what the workflows are about to discard, each time just before it would be lost. A copy that cannot be
/// made is logged and stops nothing.
class SafetyCopies {
  public:
    /// All are borrowed and outlive the object.
    SafetyCopies(TrackDocument& document, KeptCopies& copies, UnsentTracks& unsent);

    /// The open track is about to be left, or its file to be replaced: keeps the paths that no file has, each
    /// state of them once.
    void KeepUnsaved();
    /// The unpacked workspace is about to be replaced or removed: keeps its tracks that were saved and not
    /// sent.
    void KeepUnsent();
    /// A file is about to be deleted, or another to take its place.
    void KeepDeleted(const std::string& file);
    void KeepReplaced(const std::string& file);
    /// A save is about to replace `target`: keeps it when it is a text track.
    void KeepTextOriginal(const std::string& target);

  private:
    TrackDocument& document;
    KeptCopies& copies;
    UnsentTracks& unsent;
    TrackDocument::Revision keptRevision; ///< the unsaved state that was kept last
};
