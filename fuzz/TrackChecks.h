#pragma once

#include "IndependentTrack.h"
#include "document/formats/Heights.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <cstddef>
#include <string>
#include <vector>

class Converter;
class QImage;

/// Equal bit for bit, so that NaN equals itself.
bool SameBits(double one, double other);

/// For any result of a reader: every path has a point, its four lists are as long as its points, it has no
/// ruler marks, and there are no more points than bytes in the file.
void CheckPaths(const std::vector<TrackPath>& paths, std::size_t fileSize);

/// Checks information read successfully from a file of this size: the numbers of positions match
/// the dimensions, and the range is finite or still empty.
void CheckRange(double lowest, double highest, double emptyLowest, double emptyHighest);

/// Checks that an image has a map's size and format, and only colours of the ramp.
void CheckImage(const QImage& image, const TrackInfo& info);

/// Checks that two lists of paths have the same points, bit for bit, and parameters.
void CheckSamePaths(const std::vector<TrackPath>& found, const std::vector<TrackPath>& expected);

/// Checks that the records of a binary file are those of these paths.
void CheckSameRecords(const std::vector<independent::Segment>& records, const std::vector<TrackPath>& paths);

/// Writes a complete binary track and reads it back with the editor's reader and the independent one.
void CheckRoundTrip(const TrackInfo& info, const HeightMap& heights, const std::vector<TrackPath>& paths);
