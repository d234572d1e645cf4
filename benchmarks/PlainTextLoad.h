#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QImage>

#include <string>
#include <vector>

/// Loads a text track in the simplest correct way: getline, the tokenizer, atof, setPixel. Each operation
/// reads the file separately. For well-formed files only.
void PlainTextLoad(const std::string& path, TrackInfo& info, QImage& image, std::vector<TrackPath>& paths);
