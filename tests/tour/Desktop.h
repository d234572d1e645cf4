#pragma once

#include "CommaLocale.h"

#include <memory>
#include <string>

/// A desktop that an operator may have: its scale, colours, fonts, reading direction and locale.
class Desktop {
  public:
    /// @param name "plain", "125", "150", "175" or "200" (the scale in per cent), "dark", "comma",
    ///        "right-to-left" or "large-fonts"
    /// @throws std::runtime_error for any other name
    explicit Desktop(std::string name);

    /// Sets what Qt reads at the creation of the application object.
    void Prepare() const;
    /// Sets the rest, after the application object was created. The locale remains until this object is
    /// destroyed.
    void Apply();

    /// Whether the tour runs every scenario on this desktop, or only the main one.
    [[nodiscard]] bool IsPlain() const { return name == "plain"; }

  private:
    std::string name;
    std::unique_ptr<CommaLocale> locale;
};
