#pragma once

#include "document/TrackDocument.h"

#include <QStringList>

#include <functional>

class TrackView;

/// What the operator does with track files: lists, loads, saves and deletes them. Failures are thrown as
/// Ve::Exception with the text that the operator is shown.
class TrackOperations {
  public:
    /// @param sourceIsOpen says whether there is an unpacked workspace to be listed
    /// All are borrowed and outlive the object.
    TrackOperations(TrackDocument& document, TrackView& view, std::function<bool()> sourceIsOpen);

    /// Lists the workspace's tracks anew; none while no source is open.
    void RefreshTrackList();

    // The operations. Each returns whether it came to its end, which is then reported as a success; the
    // operator may have cancelled it, or there may be nothing to save.
    bool Load();
    bool Save();
    bool SaveAs();
    bool Delete();

    /// Opens a track file in place of the open track. While its information or its height map cannot be read
    /// the track before stays visible.
    void LoadTrack(const QString& path, TrackOrigin origin);
    /// Writes the document's paths, with the rest of `source`, to `target`.
    void SaveTrack(const QString& source, const QString& target);
    /// Nothing is shown any more.
    void CloseTrack();
    /// The same when the open track is one of the workspace.
    void CloseWorkspaceTrack();
    /// Removes the paths of a track that was closed.
    void ResetPaths() { document.resetPaths(); }

  private:
    [[nodiscard]] bool HasTrackToSave();
    void SaveExternalTrack(const QString& path);
    void SaveInPlace(const QString& track);

    TrackDocument& document;
    TrackView& view;
    std::function<bool()> sourceIsOpen;
    QStringList trackFiles; ///< names in the workspace's track folder, as last listed
};
