#pragma once

#include <string>

/// Sets a process locale that writes one and a half as "1,5", as on a German desktop, while the
/// object lives. The locale is built by the test, so every system has it.
class CommaLocale {
  public:
    /// @throws std::runtime_error when the locale cannot be built
    CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale();

    /// Switches to the comma locale, which is also set by the constructor.
    void Enter() const;

    /// Switches to the C locale.
    void Leave() const;

  private:
    std::string folder;
    std::string before;
};
