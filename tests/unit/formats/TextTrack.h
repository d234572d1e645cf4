#pragma once

#include "document/formats/TrackInfo.h"

#include <string>

/// A text track of three columns and two rows, with an anchor and one path of two points; one cell is empty.
std::string SmallTrack();

/// The text with the first occurrence of `old` replaced. @throws std::logic_error when there is none
std::string Replaced(std::string text, const std::string& old, const std::string& now);

/// An information block as the window starts a read with: an empty height range.
TrackInfo StartInfo();

/// The dimensions alone.
TrackInfo InfoOfSize(std::int32_t width, std::int32_t height);

/// Ten million times the character.
std::string TenMegabytes(char character);
