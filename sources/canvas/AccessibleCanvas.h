#pragma once

#include <QAccessibleWidget>

class QMaskWidget;

/// What a screen reader says of the canvas: the track, its paths, the chosen segment and the point under the
/// cursor; and the keys that edit. The text is built when it is asked for.
class AccessibleCanvas final : public QAccessibleWidget {
  public:
    explicit AccessibleCanvas(QMaskWidget& canvas);

    /// Makes Qt ask this class about every canvas; once is enough.
    static void Install();

    [[nodiscard]] QString text(QAccessible::Text kind) const override;

  private:
    [[nodiscard]] QString Describe() const;
    [[nodiscard]] QString DescribePoint() const;
    /// The keys that edit: no tool tip lists them.
    [[nodiscard]] static QString Keys();

    QMaskWidget& canvas;
};
