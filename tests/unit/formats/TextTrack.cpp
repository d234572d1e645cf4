#include "TextTrack.h"

#include <stdexcept>

std::string SmallTrack() {
    return "Info\n"
           "XResolution,YResolution,ZResolution,XOffset,YOffset,ZOffset,Width,Height\n"
           "0.1,0.2,0.01,3,4,-5,3,2\n"
           "YX,0.0,0.1,0.2\n"
           "10.0,1.25,,1.30\n"
           "10.1,1.27,1.29,1.31\n"
           "End\n"
           "Anchor\n"
           "X,Y,Angle\n"
           "7.5,-8,90\n"
           "End\n"
           "Ruler\n"
           "Ruler,Track,Segment,X1,Y1,X2,Y2,Method,Width\n"
           "End\n"
           "Segment\n"
           "Track,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n"
           "0,0,12.5,3.2,0.25,0.4,1,100,50,100\n"
           "0,1,20.5,3.2,0.65,0.5,2,101,51,102\n"
           "End\n";
}

std::string Replaced(std::string text, const std::string& old, const std::string& now) {
    const std::size_t at = text.find(old);
    if (at == std::string::npos)
        throw std::logic_error("not in the text: " + old);
    return text.replace(at, old.size(), now);
}

TrackInfo StartInfo() {
    TrackInfo info;
    info.minHeight = 32768.0;
    info.maxHeight = -32768.0;
    return info;
}

TrackInfo InfoOfSize(std::int32_t width, std::int32_t height) {
    TrackInfo info = StartInfo();
    info.width = width;
    info.height = height;
    return info;
}

std::string TenMegabytes(char character) {
    std::string text;
    text.resize(10'000'000, character);
    return text;
}
