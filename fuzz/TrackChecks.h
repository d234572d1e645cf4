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

/// Equal bit for bit, so that what is no number equals itself.
bool SameBits(double one, double other);

/// Whatever a reader answered: every path has a point, its four lists are as long as its points, it has no
/// ruler marks, and there are no more points than bytes in the file.
void CheckPaths(const std::vector<TrackPath>& paths, std::size_t fileSize);

/// What holds after information was read successfully, for a file of this size: the positions are as many as
/// the dimensions say, and the range is of finite heights or empty as it started.
void CheckRange(double lowest, double highest, double emptyLowest, double emptyHighest);

/// That an image has a map's size and format, and only colours of the ramp.
void CheckImage(const QImage& image, const TrackInfo& info);

/// That two lists of paths have the same points, bit for bit, and parameters.
void CheckSamePaths(const std::vector<TrackPath>& found, const std::vector<TrackPath>& expected);

/// That the records of a binary file are those of these paths.
void CheckSameRecords(const std::vector<independent::Segment>& records, const std::vector<TrackPath>& paths);

/// Writes a whole binary track and reads it back with the editor's reader and the independent one.
void CheckRoundTrip(const TrackInfo& info, const HeightMap& heights, const std::vector<TrackPath>& paths);
