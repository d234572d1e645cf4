#pragma once

#include "CommaLocale.h"

#include <memory>
#include <string>

/// A desktop that an operator may have: its scale, colours, fonts, reading direction and locale.
class Desktop {
  public:
    /// @param name "plain", "125", "150", "175" or "200" (the scale in per cent), "dark", "comma",
    /// "right-to-left"
    ///     or "large-fonts"
    /// @throws std::runtime_error for any other name
    explicit Desktop(std::string name);

    /// Sets what Qt reads when the application object is created.
    void Prepare() const;
    /// Sets the rest, of the application that was created by then. The locale stays until this object is
    /// destroyed.
    void Apply();

    /// Whether the tour has every scenario here, or the main one alone.
    [[nodiscard]] bool IsPlain() const { return name == "plain"; }

  private:
    std::string name;
    std::unique_ptr<CommaLocale> locale;
};
