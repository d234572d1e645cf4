#include "workflow/WorkProtection.h"

#include "basalt/bFile.h"
#include "document/formats/CsvPaths.h"
#include "workflow/KeptCopies.h"
#include "workflow/WorkingFiles.h"

#include <utility>

WorkProtection::WorkProtection(TrackDocument& document, std::string keptFolder)
    : document(document),
      copies(std::move(keptFolder)),
      unsent(copies, kWorkspaceFolder, kTrackFolder.toStdString()),
      journal(copies),
      automaticJournal(document, journal),
      keptRevision(document.revision()) {
}

/// The complete track, or the paths alone when its file is missing or damaged.
void WorkProtection::KeepUnsaved() {
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
    if (copies.KeepWritten(document.file(), KeptReason::Unsaved, writeTrack) ||
        copies.KeepWritten(document.file(), KeptReason::Unsaved, writePaths, ".csv"))
        automaticJournal.Discard();
}

void WorkProtection::KeepDeleted(const std::string& file) {
    if (bFile_Exists(file.c_str()) != 0)
        copies.KeepFile(file, KeptReason::Deleted);
}

void WorkProtection::KeepReplaced(const std::string& file) {
    if (bFile_Exists(file.c_str()) != 0)
        copies.KeepFile(file, KeptReason::Replaced);
}

void WorkProtection::KeepTextOriginal(const std::string& target) {
    ::KeepTextOriginal(copies, target);
}

void WorkProtection::Recover() {
    journal.Recover([](const std::string& original, const std::string& target, const auto& paths) {
        return SaveWithNewMarks(original, target, paths) == SaveResult::Saved;
    });
}
