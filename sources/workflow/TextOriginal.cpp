#include "workflow/TextOriginal.h"

#include "document/formats/TrackEncoding.h"
#include "log/Log.h"
#include "workflow/KeptCopies.h"

#include <filesystem>

bool KeepTextOriginal(KeptCopies& copies, const std::string& target) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(target, failure))
        return true;
    const std::optional<TrackEncoding> encoding = EncodingOf(target);
    if (!encoding) {
        LOG_LINE(ERROR) << "Failed to keep " << target << ": its encoding cannot be read";
    }
    if (encoding != TrackEncoding::Text)
        return encoding.has_value();
    return copies.KeepFile(target, KeptReason::TextOriginal).has_value();
}
