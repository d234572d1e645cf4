#pragma once

/// All that the canvas knows of the window it stands in.
class RulerOwner {
  public:
    /// Whether the ruler is shown, and so kept up to date while paths are edited.
    [[nodiscard]] virtual bool rulerShown() const = 0;

    /// Has the canvas compute its ruler marks for the open track's image.
    virtual void refreshRuler() = 0;

  protected:
    ~RulerOwner() = default;
};
