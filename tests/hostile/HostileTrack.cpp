#include "HostileTrack.h"

std::string HostileTrack::Box() const {
    if (info.result != 0)
        return "ERROR_TRACK - Failed to read basic information.";
    if (image.result != 0)
        return "ERROR_TRACK - Failed to read height map.";
    if (paths.result != 0)
        return "ERROR_TRACK - Failed to read path information.";
    return "";
}
