#pragma once

#include "document/TrackGeometry.h"
#include "document/formats/HeightProbe.h"

#include <QBasicTimer>
#include <QObject>
#include <QPointF>

#include <optional>

class QLabel;
class QMaskWidget;
class QStatusBar;
class TrackDocument;

/// Shows in the status bar the position on the track of the cursor, or of the point that a key has chosen,
/// the height measured there, and the length of what is being drawn or dragged. All in world units. Ctrl+C on
/// the canvas copies the position.
class ReadOuts final : public QObject {
  public:
    /// Adds its labels to the left of those that the bar has. Both are borrowed and outlive the object.
    ReadOuts(QStatusBar& bar, QMaskWidget& canvas);

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    /// Puts the shown position on the clipboard; does nothing without one.
    void copyPosition() const;
    QLabel& addLabel(QStatusBar& bar, const char* name, const QString& widestText);
    void openFile();
    void show();
    /// The place that is read out, normalised to the canvas; none outside the map.
    [[nodiscard]] std::optional<QPointF> place() const;
    /// x and y in world units inserted into `form`, with the decimals that a hundredth of a cell needs.
    [[nodiscard]] QString positionAt(const QPointF& place, const QString& form) const;
    [[nodiscard]] QString heightAt(const QPointF& place);
    [[nodiscard]] QString lengthsText() const;
    [[nodiscard]] std::optional<DrawnLengths> drawnLengths() const;

    QMaskWidget& canvas;
    const TrackDocument& document;
    HeightProbe probe;
    QBasicTimer preparing; ///< active while the probe prepares
    QLabel& position;      ///< the labels belong to the bar
    QLabel& height;
    QLabel& length;
};
