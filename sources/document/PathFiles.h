#pragma once

#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QSize>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What ties the normalised points of a track to world units in its file. @param map columns x rows
[[nodiscard]] WorldTransform WorldOf(const TrackInfo& info, const QSize& map);

/// How writing a track with new paths ended.
enum class SaveResult { Saved, OriginalUnreadable, TargetUnwritable };

/// Writes `original`, of either encoding, with `paths` in place of its own as the binary track file `target`.
/// A target that cannot be written completely, or whose original cannot be read completely, is left as it
/// was.
/// @param wasOpened whether the paths of `original` were read before: a text track without their section was
/// truncated since
/// @param ticks how many ruler ticks the paths have, if known: when their marks hold fewer, some were
/// omitted, and nothing is written
/// @return OriginalUnreadable also for a text track whose heights a binary one cannot hold, and for omitted
/// ticks; the log says which
[[nodiscard]] SaveResult SaveWithPaths(const std::string& original, const std::string& target,
                                       const std::vector<TrackPath>& paths, const WorldTransform& world,
                                       bool wasOpened, std::optional<std::uint64_t> ticks = {});

/// The same for a track that is not open: ruler marks and world coordinates are those that it would have if
/// it were.
[[nodiscard]] SaveResult SaveWithNewMarks(const std::string& original, const std::string& target,
                                          std::vector<TrackPath> paths);
