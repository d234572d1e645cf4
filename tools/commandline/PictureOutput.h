#pragma once

#include <QImage>

#include <string>

/// Writes a picture as a PNG file, which appears at once.
/// @throws Failure with ExitCode::Unwritable
void WritePicture(const QImage& picture, const std::string& file);
