#include "document/formats/Converter.h"

#include "document/formats/ConvertBIN.h"
#include "document/formats/ConvertCSV.h"
#include "document/formats/TrackEncoding.h"
#include "log/Log.h"

std::shared_ptr<Converter> CreateConverter(const std::string& path) {
    const std::optional<TrackEncoding> encoding = EncodingOf(path);
    if (!encoding) {
        LOG_LINE(ERROR) << "Could not find file (" << path << ")";
        return std::make_shared<ConvertCSV>();
    }
    if (*encoding == TrackEncoding::Binary)
        return CreateBinaryConverter();
    LOG_LINE(INFO) << "Creating ConvertCSV.";
    return std::make_shared<ConvertCSV>();
}

std::shared_ptr<Converter> CreateBinaryConverter() {
    LOG_LINE(INFO) << "Creating ConvertBIN.";
    return std::make_shared<ConvertBIN>();
}
