#include "workflow/TextOriginal.h"

#include "basalt/bFile.h"
#include "document/formats/TrackEncoding.h"
#include "log/Log.h"
#include "workflow/KeptCopies.h"

bool KeepTextOriginal(KeptCopies& copies, const std::string& target) {
    if (bFile_Exists(target.c_str()) == 0)
        return true;
    const std::optional<TrackEncoding> encoding = EncodingOf(target);
    if (!encoding) {
        LOG_LINE(ERROR) << "Failed to keep " << target << ": its encoding cannot be read";
    }
    if (encoding != TrackEncoding::Text)
        return encoding.has_value();
    return copies.KeepFile(target, KeptReason::TextOriginal).has_value();
}
