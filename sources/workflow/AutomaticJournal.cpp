#include "workflow/AutomaticJournal.h"

#include "workflow/EditJournal.h"

AutomaticJournal::AutomaticJournal(const TrackDocument& document, EditJournal& journal,
                                   std::chrono::milliseconds delay)
    : document(document), journal(journal), written(document.revision()) {
    timer.setSingleShot(true);
    timer.setInterval(delay);
    connect(&timer, &QTimer::timeout, this, &AutomaticJournal::Write);
    connect(&document, &TrackDocument::modifiedChanged, this, &AutomaticJournal::Follow);
}

void AutomaticJournal::Discard() {
    timer.stop();
    journal.Discard();
    written = document.revision();
}

void AutomaticJournal::Follow() {
    if (!document.hasImage() || !document.isModified())
        Discard();
    else if (document.revision() != written && !timer.isActive())
        timer.start();
}

void AutomaticJournal::Write() {
    if (document.revision() == written)
        return;
    journal.Write(document.file(), document.image().size(), document.paths());
    written = document.revision();
}
