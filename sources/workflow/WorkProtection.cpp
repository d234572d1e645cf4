#include "workflow/SafetyCopies.h"

#include "document/formats/CsvPathWriter.h"
#include "workflow/KeptCopies.h"
#include "workflow/TextOriginal.h"
#include "workflow/UnsentTracks.h"

#include <filesystem>

namespace {

bool Exists(const std::string& file) {
    std::error_code failure;
    return std::filesystem::is_regular_file(file, failure);
}

} // namespace

SafetyCopies::SafetyCopies(TrackDocument& document, KeptCopies& copies, UnsentTracks& unsent)
    : document(document), copies(copies), unsent(unsent), keptRevision(document.revision()) {
}

/// The whole track, or the paths alone when its file is lost or damaged.
void SafetyCopies::KeepUnsaved() {
    if (!document.hasImage() || !document.isModified() || document.revision() == keptRevision)
        return;
    keptRevision = document.revision();
    document.computeRulerMarks(document.shownSize());
    const auto writeTrack = [this](const std::string& target) {
        return document.write(document.file(), target, document.worldTransform()) == SaveResult::Saved;
    };
    const auto writePaths = [this](const std::string& target) {
        return WriteCsvPathsAlone(target, document.paths()) == 0;
    };
    if (!copies.KeepWritten(document.file(), KeptReason::Unsaved, writeTrack))
        copies.KeepWritten(document.file(), KeptReason::Unsaved, writePaths, ".csv");
}

void SafetyCopies::KeepUnsent() {
    unsent.Keep();
}

void SafetyCopies::KeepDeleted(const std::string& file) {
    if (Exists(file))
        copies.KeepFile(file, KeptReason::Deleted);
}

void SafetyCopies::KeepReplaced(const std::string& file) {
    if (Exists(file))
        copies.KeepFile(file, KeptReason::Replaced);
}

void SafetyCopies::KeepTextOriginal(const std::string& target) {
    if (Exists(target))
        ::KeepTextOriginal(copies, target);
}
