#include "workflow/TextOriginal.h"

#include "document/formats/TrackEncoding.h"
#include "workflow/KeptCopies.h"

bool KeepTextOriginal(KeptCopies& copies, const std::string& target) {
    return EncodingOf(target) != TrackEncoding::Text ||
           copies.KeepFile(target, KeptReason::TextOriginal).has_value();
}
