#pragma once

#include <QString>
#include <QStringList>

/// What the operations on tracks need from the window.
class TrackView {
  public:
    /// Whether the chosen entry of the list of files is "External" instead of a track of the workspace.
    [[nodiscard]] virtual bool isExternalChosen() const = 0;
    /// The chosen entry of the list of files, and its place in it.
    [[nodiscard]] virtual QString chosenTrack() const = 0;
    [[nodiscard]] virtual int chosenTrackIndex() const = 0;

    /// Lets the operator choose a file; empty when that was cancelled.
    virtual QString askForTrack() = 0;
    virtual QString askForCopyName() = 0;

    /// Lists these tracks of the workspace, and "External" after them.
    virtual void showTrackList(const QStringList& names) = 0;
    virtual void removeFromTrackList(int index) = 0;
    /// Makes the track of this name the chosen entry of the list.
    virtual void chooseTrack(const QString& name) = 0;

    /// The name of the open track; empty when none is open.
    virtual void showFileName(const QString& name, bool external) = 0;
    virtual void showHeights(double lowest, double highest) = 0;
    /// Shows the document's picture, fitted to the view.
    virtual void showTrack() = 0;
    /// Shows the first segment, and the ruler marks while the ruler is shown.
    virtual void showPaths() = 0;
    /// Removes the picture.
    virtual void showNoTrack() = 0;
    /// Shows that there is no track to be saved.
    virtual void showNothingToSave() = 0;
    /// Brings the ruler marks up to date, as a save needs them.
    virtual void refreshRuler() = 0;

  protected:
    ~TrackView() = default;
};
