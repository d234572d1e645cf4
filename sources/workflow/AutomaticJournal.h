#pragma once

#include "document/TrackDocument.h"

#include <QObject>
#include <QTimer>

#include <chrono>

class EditJournal;

/// Writes the open track's unsaved paths into a journal some seconds after an edit, so that a crash loses no
/// more than those seconds, and discards it when nothing is unsaved.
class AutomaticJournal final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::chrono::milliseconds kUsualDelay{5000};

    /// Both are borrowed and outlive the object. @param delay between the first edit and writing it
    AutomaticJournal(const TrackDocument& document, EditJournal& journal,
                     std::chrono::milliseconds delay = kUsualDelay);

    /// What is unsaved now has been kept elsewhere: the journal starts again with the next edit.
    void Discard();

  private:
    void Follow();
    void Write();

    const TrackDocument& document;
    EditJournal& journal;
    QTimer timer;
    TrackDocument::Revision
        written; ///< the paths that the journal holds; those of the file when it holds none
};
