#include "ConvertCSV.h"

int ConvertCSV::ReadInfo(const std::string&, TrackInfo&) {
    return 1;
}
int ConvertCSV::ReadImage(const std::string&, TrackInfo, double, double, QImage&) {
    return 1;
}
int ConvertCSV::ReadHeightMap(const std::string&, TrackInfo, HeightMap&, std::int64_t&) {
    return 1;
}
int ConvertCSV::ReadPath(const std::string&, std::vector<TrackPath>&) {
    return 1;
}
int ConvertCSV::WriteTrack(const std::string&, const TrackInfo&, const HeightMap&, std::int64_t,
                           const std::vector<TrackPath>&, double, double, double, double, double) {
    return -1;
}
int ConvertCSV::UpdatePath(const std::string&, const std::string&, const std::vector<TrackPath>&, double,
                           double, double, double, double) {
    return 1;
}
