#pragma once

#include "document/TrackDocument.h"

#include <QStringList>

#include <functional>

class TrackView;
class WorkProtection;

/// What the operator does with track files: lists, loads, saves and deletes them. Failures are thrown as
/// Ve::Exception with the text that the operator is shown.
class TrackOperations {
  public:
    /// What the operations work with; all are borrowed and outlive the object.
    struct Context {
        TrackDocument& document;
        TrackView& view;
        WorkProtection& protection;
        std::function<bool()> sourceIsOpen; ///< whether there is an unpacked workspace to be listed
    };

    explicit TrackOperations(Context context);

    /// Lists the workspace's tracks again; none while no source is open.
    void RefreshTrackList();

    // The operations. Each returns whether it completed, which is then reported as a success; otherwise the
    // operator cancelled it, or there was nothing to save.
    bool Load();
    bool Save();
    bool SaveAs();
    bool Delete();

    /// Opens a track file in place of the open track. If its information or its height map cannot be read,
    /// the previous track stays visible.
    void LoadTrack(const QString& path, TrackOrigin origin);
    /// Writes the document's paths, with the rest of `source`, to `target`.
    void SaveTrack(const QString& source, const QString& target);
    /// Closes the open track. Paths that no file has are kept first.
    void CloseTrack();
    /// The same when the open track is one of the workspace.
    void CloseWorkspaceTrack();
    /// The workspace is about to be replaced: keeps unsaved paths of its open track.
    void KeepUnsavedOfWorkspace();
    /// Removes the paths of a track that was closed.
    void ResetPaths() { document.resetPaths(); }

  private:
    [[nodiscard]] bool HasTrackToSave();
    void SaveExternalTrack(const QString& path);
    void SaveIntoWorkspace(const QString& source, const QString& name);
    void SaveInPlace(const QString& track);
    [[nodiscard]] QString NameInWorkspace(const QString& externalPath) const;

    TrackDocument& document;
    TrackView& view;
    WorkProtection& protection;
    std::function<bool()> sourceIsOpen;
    QStringList trackFiles; ///< names in the workspace's track folder, as last listed
};
