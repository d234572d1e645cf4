#pragma once

#include "document/formats/TrackInfo.h"

#include <string>

/// A text track of three columns and two rows, with an anchor and one path of two points; one cell is empty.
std::string SmallTrack();

/// The text with the first occurrence of `old` replaced. @throws std::logic_error when there is none
std::string Replaced(std::string text, const std::string& old, const std::string& now);

/// The information with which the window starts a read: an empty height range.
TrackInfo StartInfo();

/// Only the dimensions.
TrackInfo InfoOfSize(std::int32_t width, std::int32_t height);

/// Ten million copies of the character.
std::string TenMegabytes(char character);
