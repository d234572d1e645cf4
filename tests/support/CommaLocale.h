#pragma once

#include <string>

/// Makes the process's locale one that writes one and a half as "1,5", as on a German desktop, while the
/// object lives. The locale is built for the purpose, so that it is there on every system.
class CommaLocale {
  public:
    /// @throws std::runtime_error when the locale cannot be built
    CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale();

    /// Switches to the comma locale, as it is after construction.
    void Enter() const;

    /// Switches to the C locale.
    void Leave() const;

  private:
    std::string folder;
    std::string before;
};
