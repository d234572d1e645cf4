#include "CommaLocale.h"

#include <stdexcept>

/// The process's locale has no part in the programs here. A region with a comma is one of the user's, not of
/// a test.
CommaLocale::CommaLocale() {
    throw std::runtime_error("no locale is made on this system; choose a region with a decimal comma");
}

CommaLocale::~CommaLocale() = default;

void CommaLocale::Enter() const {
}

void CommaLocale::Leave() const {
}
