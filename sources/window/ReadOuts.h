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

/// Says in the status bar where on the track the cursor is, or the point that a key has chosen; which height
/// was measured there; and how long what is being drawn or dragged is. All is in world units. Ctrl+C on the
/// canvas copies the position.
class ReadOuts final : public QObject {
  public:
    /// Adds its labels to the left of those that the bar has. Both are borrowed and outlive the object.
    ReadOuts(QStatusBar& bar, QMaskWidget& canvas);

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    /// Puts the position that is shown on the clipboard; without one nothing.
    void copyPosition() const;
    QLabel& addLabel(QStatusBar& bar, const char* name, const QString& widestText);
    void openFile();
    void show();
    /// The place that is read out, normalised to the canvas; none when nothing of the map is there.
    [[nodiscard]] std::optional<QPointF> place() const;
    /// x and y in world units put into a form, with the digits that a hundredth of a cell takes.
    [[nodiscard]] QString positionAt(const QPointF& place, const QString& form) const;
    [[nodiscard]] QString heightAt(const QPointF& place);
    [[nodiscard]] QString lengthsText() const;
    [[nodiscard]] std::optional<DrawnLengths> drawnLengths() const;

    QMaskWidget& canvas;
    const TrackDocument& document;
    HeightProbe probe;
    QBasicTimer preparing; ///< while the probe has something to find out
    QLabel& position;      ///< these are the bar's
    QLabel& height;
    QLabel& length;
};
