#pragma once

#include "document/formats/Converter.h"

/// The text encoding of track files.
class ConvertCSV final : public Converter {
  public:
    int ReadInfo(const std::string& path, TrackInfo& info) override;
    int ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                  QImage& image) override;
    int ReadHeightMap(const std::string& path, TrackInfo info, HeightMap& heights,
                      std::int64_t& size) override;
    /// The same for a map that is to be stored in raw values alone. A map that lacks rows is a failure, as
    /// for an image; so is one that would not survive it (RawHeightCheck), and the log says at which cell.
    int ReadHeightMapToStore(const std::string& path, const TrackInfo& info, HeightMap& heights,
                             std::int64_t& size);
    /// Whether the file has the section that `ReadPath` reads.
    [[nodiscard]] static bool HasPathSection(const std::string& path);
    int ReadPath(const std::string& path, std::vector<TrackPath>& paths) override;
    int WriteTrack(const std::string& target, const TrackInfo& info, const HeightMap& heights,
                   std::int64_t size, const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                   double yOffset, double xScale, double yScale) override;
    int UpdatePath(const std::string& original, const std::string& target,
                   const std::vector<TrackPath>& paths, double widthScale, double xOffset, double yOffset,
                   double xScale, double yScale) override;
};
