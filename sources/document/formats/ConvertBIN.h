#pragma once

#include "document/formats/Converter.h"

/// The binary encoding of track files, as docs/track-files.md gives it byte by byte. Maps are streamed; sizes
/// in a file are checked against its bytes before memory is allocated.
class ConvertBIN final : public Converter {
  public:
    /// Leaves the anchor and the positions of columns and rows as they were: the encoding has no positions,
    /// and the anchor is skipped. A file of another version counts as read, with `info` untouched.
    int ReadInfo(const std::string& path, TrackInfo& info) override;
    /// `info` must have the file's dimensions. The image is replaced only when all of it was read.
    int ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                  QImage& image) override;
    /// Not offered: returns -1.
    int ReadHeightMap(const std::string& path, TrackInfo info, HeightMap& heights,
                      std::int64_t& size) override;
    /// What ReadHeightMap does not offer: the raw heights as the file has them. `info` must have the file's
    /// dimensions; `heights` is replaced only when all of them were read. @return 0, or 1 on failure.
    int ReadRawHeights(const std::string& path, const TrackInfo& info, HeightMap& heights);
    /// The anchor, which ReadInfo skips; 0, 0, 0 for a file without one. @return 0, or 1 on failure.
    int ReadAnchor(const std::string& path, TrackInfo& info);
    int ReadPath(const std::string& path, std::vector<TrackPath>& paths) override;
    /// The map's size is that of the dimensions in `info`; `size` is not used. A map with fewer cells, and
    /// paths whose lists are not parallel, are not written: 2.
    int WriteTrack(const std::string& target, const TrackInfo& info, const HeightMap& heights,
                   std::int64_t size, const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                   double yOffset, double xScale, double yScale) override;
    /// Header, map and anchor are copied unchanged; everything after them is dropped unread.
    int UpdatePath(const std::string& original, const std::string& target,
                   const std::vector<TrackPath>& paths, double widthScale, double xOffset, double yOffset,
                   double xScale, double yScale) override;
};
