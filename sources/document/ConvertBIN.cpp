#include "ConvertBIN.h"

int ConvertBIN::ReadInfo(const std::string&, TrackInfo&) {
    return 1;
}
int ConvertBIN::ReadImage(const std::string&, TrackInfo, double, double, QImage&) {
    return 1;
}
int ConvertBIN::ReadHeightMap(const std::string&, TrackInfo, HeightMap&, std::int64_t&) {
    return 1;
}
int ConvertBIN::ReadPath(const std::string&, std::vector<TrackPath>&) {
    return 1;
}
int ConvertBIN::WriteTrack(const std::string&, const TrackInfo&, const HeightMap&, std::int64_t,
                           const std::vector<TrackPath>&, double, double, double, double, double) {
    return -1;
}
int ConvertBIN::UpdatePath(const std::string&, const std::string&, const std::vector<TrackPath>&, double,
                           double, double, double, double) {
    return 1;
}
