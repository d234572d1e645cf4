#pragma once

#include <string>

class KeptCopies;

/// Keeps a text track before a save puts a binary one in its place, which has its heights in 16 bits only.
/// Anything but a text track needs no copy.
/// @return false when there is a text track that could not be kept, or a file of which nobody knows what it
/// is; the log says why
bool KeepTextOriginal(KeptCopies& copies, const std::string& target);
