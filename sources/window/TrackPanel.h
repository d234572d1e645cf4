#pragma once

#include "workflow/TrackView.h"

#include <QWidget>

class RulerControl;
class SegmentPanel;
class TrackDocument;
class ViewScale;

namespace Ui {
class MainWindow;
}

/// The controls for track files: the list of files, the list of operations, the open track's name and
/// heights, and its picture on the canvas.
class TrackPanel final : public TrackView {
  public:
    /// The other controls that a newly loaded track concerns.
    struct Neighbours {
        ViewScale& scale;
        SegmentPanel& segments;
        RulerControl& ruler;
    };

    /// All are borrowed and outlive the panel. @param window the parent of dialogs
    TrackPanel(Ui::MainWindow& ui, QWidget& window, const TrackDocument& document, Neighbours neighbours);

    /// Adapts the operations to the chosen entry of the list of files: an external file is never deleted.
    void followChosenTrack(const QString& text);
    /// Back to the operation that does nothing.
    void returnToNormal();
    /// The "Error" box; the text is shown literally.
    void showError(const QString& text);

    [[nodiscard]] bool isExternalChosen() const override;
    [[nodiscard]] QString chosenTrack() const override;
    [[nodiscard]] int chosenTrackIndex() const override;
    QString askForTrack() override;
    QString askForCopyName() override;
    void showTrackList(const QStringList& names) override;
    void removeFromTrackList(int index) override;
    void chooseTrack(const QString& name) override;
    void showFileName(const QString& name, bool external) override;
    void showHeights(double lowest, double highest) override;
    void showTrack() override;
    void showPaths() override;
    void showNoTrack() override;
    void showNothingToSave() override;
    void refreshRuler() override;

  private:
    void setUp();

    Ui::MainWindow& ui;
    QWidget& window;
    const TrackDocument& document;
    Neighbours others;
};
