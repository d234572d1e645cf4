#pragma once

#include "IndependentTrack.h"
#include "document/formats/Converter.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <limits>
#include <string>
#include <vector>

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// A small track of 5 x 3 cells, two of them without measurement, with its text side filled in as well; no
/// paths.
independent::Track SampleTrack();

/// Two paths of three and one points, the first with ruler marks on both its segments. All numbers are exact
/// with 6 significant digits.
std::vector<TrackPath> SamplePaths();

/// Factors that are all different, so that none can be mistaken for another.
WorldTransform SampleTransform();

/// The information of a track, as a converter gets it.
TrackInfo InfoOf(const independent::Track& track);

/// Adds the records of paths to a track by the format's rule: one ruler per tick, one segment record per
/// point.
void SetRecords(independent::Track& track, const std::vector<TrackPath>& paths,
                const WorldTransform& transform);

/// The sample track with the sample paths' records.
independent::Track TrackWithPaths();

/// Lets a converter update a file's paths with the sample transform. @return its result
int UpdateWith(Converter& converter, const std::string& original, const std::string& target,
               const std::vector<TrackPath>& paths);

/// The paths without the marks, which a file does not keep.
std::vector<TrackPath> WithoutMarks(std::vector<TrackPath> paths);

/// Checks that points and parameters are equal and that neither has ruler marks.
void ExpectSamePaths(const std::vector<TrackPath>& actual, const std::vector<TrackPath>& expected);

/// The names in the working folder, sorted.
std::vector<std::string> NamesHere();
