#include "FileHand.h"

#include "DocumentSamples.h"
#include "EditingChecks.h"

#include <QAbstractItemView>
#include <QStatusBar>

void FileHand::chooseFile() {
    auto& combo = storm.find<QComboBox>("comboBox_file");
    combo.setFocus();
    QTest::keyClick(&combo, random.oneOf<Qt::Key>({Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End}));
}

void FileHand::pressKeyOnOperations() {
    auto& combo = storm.find<QComboBox>("comboBox_operation");
    if (!combo.isEnabled() || !storm.window->isEnabled())
        return;
    combo.setFocus();
    QTest::keyClick(&combo, random.oneOf<Qt::Key>({Qt::Key_Down, Qt::Key_Up, Qt::Key_End, Qt::Key_Home,
                                                   Qt::Key_S, Qt::Key_D, Qt::Key_L, Qt::Key_R}));
    EXPECT_TRUE(combo.view()->isVisible());
    QTest::keyClick(combo.view(), Qt::Key_Escape);
}

void FileHand::operate(const std::string& operation) {
    storm.find<QStatusBar>("statusBar").clearMessage();
    storm.note(operation);
    storm.choose("comboBox_operation", operation);
    storm.countStatus();
    if (storm.status() == "Save successfully.") {
        checkSaved(kTracks + storm.text("label_fileName"));
        if (random.chance(4))
            loadSavedAgain();
    }
}

void FileHand::operateOnFile() {
    if (!storm.find<QComboBox>("comboBox_operation").isEnabled() || !storm.window->isEnabled())
        return;
    std::string operation =
        random.oneOf<std::string>({"Load", "Load", "Load", "Save", "Save", "Save As", "Delete", "Refresh"});
    const bool external = externalIsChosen();
    // Dialogs take long.
    if ((operation == "Save As" || (operation == "Load" && external)) && !random.chance(4))
        operation = "Save";
    const std::string typed = operation == "Save As"
                                  ? random.oneOf<std::string>({"saved.trk", "other.trk", "", "no/where.trk"})
                                  : random.oneOf(disk.externals());
    if (operation == "Save As" || (operation == "Load" && external))
        storm.typeName(typed);
    operate(operation);
    const std::vector<SeenFileDialog> dialogs = storm.answers.takeFileDialogs();
    if (storm.status() == "Save As successfully." && dialogs.size() == 1 && !typed.empty())
        checkSaved(storm.folder.Path(typed));
    disk.checkFilesAlone();
}

void FileHand::load() {
    if (externalIsChosen())
        storm.typeName(random.oneOf(disk.externals()));
    operate("Load");
    static_cast<void>(storm.answers.takeFileDialogs());
}

bool FileHand::externalIsChosen() {
    return storm.find<QComboBox>("comboBox_file").currentText() == QStringLiteral("External");
}

/// What the window reads of a track that it has just saved is what it wrote.
void FileHand::loadSavedAgain() {
    const QString name = QString::fromStdString(storm.text("label_fileName"));
    auto& combo = storm.find<QComboBox>("comboBox_file");
    if (combo.findText(name) < 0)
        return; // deleted from the list while it was open
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Home);
    while (combo.currentText() != name)
        QTest::keyClick(&combo, Qt::Key_Down);
    const std::vector<TrackPath> saved = storm.paths();
    storm.choose("comboBox_operation", "Load");
    EXPECT_EQ(storm.status(), "Load successfully.");
    ExpectSamePaths(WithoutMarks(storm.paths()), WithoutMarks(saved));
    storm.count("  loaded again");
}

void FileHand::checkSaved(const std::string& path) {
    storm.count("  files read back");
    SCOPED_TRACE(path);
    CheckSaved(FileContent(path), DiskHand::Map(), storm.paths());
}
