#include "FileUser.h"

#include "DocumentSamples.h"
#include "EditingChecks.h"

#include <QAbstractItemView>
#include <QStatusBar>

void FileUser::chooseFile() {
    auto& combo = stress.find<QComboBox>("comboBox_file");
    combo.setFocus();
    QTest::keyClick(&combo, random.oneOf<Qt::Key>({Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End}));
}

void FileUser::pressKeyOnOperations() {
    auto& combo = stress.find<QComboBox>("comboBox_operation");
    if (!combo.isEnabled() || !stress.window->isEnabled())
        return;
    combo.setFocus();
    QTest::keyClick(&combo, random.oneOf<Qt::Key>({Qt::Key_Down, Qt::Key_Up, Qt::Key_End, Qt::Key_Home,
                                                   Qt::Key_S, Qt::Key_D, Qt::Key_L, Qt::Key_R}));
    EXPECT_TRUE(combo.view()->isVisible());
    QTest::keyClick(combo.view(), Qt::Key_Escape);
}

void FileUser::operate(const std::string& operation) {
    stress.find<QStatusBar>("statusBar").clearMessage();
    stress.note(operation);
    stress.choose("comboBox_operation", operation);
    stress.countStatus();
    if (stress.status() == "Save successfully.") {
        checkSaved(kTracks + stress.text("label_fileName"));
        if (random.chance(4))
            loadSavedAgain();
    }
}

void FileUser::operateOnFile() {
    if (!stress.find<QComboBox>("comboBox_operation").isEnabled() || !stress.window->isEnabled())
        return;
    std::string operation =
        random.oneOf<std::string>({"Load", "Load", "Load", "Save", "Save", "Save As", "Delete", "Refresh"});
    const bool external = externalIsChosen();
    // Dialogs are slow.
    if ((operation == "Save As" || (operation == "Load" && external)) && !random.chance(4))
        operation = "Save";
    const std::string typed = operation == "Save As"
                                  ? random.oneOf<std::string>({"saved.trk", "other.trk", "", "no/where.trk"})
                                  : random.oneOf(disk.externals());
    if (operation == "Save As" || (operation == "Load" && external))
        stress.typeName(typed);
    operate(operation);
    const std::vector<SeenFileDialog> dialogs = stress.answers.takeFileDialogs();
    if (stress.status() == "Save As successfully." && dialogs.size() == 1 && !typed.empty())
        checkSaved(stress.folder.Path(typed));
    disk.checkFilesAlone();
}

void FileUser::load() {
    if (externalIsChosen())
        stress.typeName(random.oneOf(disk.externals()));
    operate("Load");
    static_cast<void>(stress.answers.takeFileDialogs());
}

bool FileUser::externalIsChosen() {
    return stress.find<QComboBox>("comboBox_file").currentText() == QStringLiteral("External");
}

/// Checks that a track that was just saved is read back unchanged.
void FileUser::loadSavedAgain() {
    const QString name = QString::fromStdString(stress.text("label_fileName"));
    auto& combo = stress.find<QComboBox>("comboBox_file");
    if (combo.findText(name) < 0)
        return; // deleted from the list while it was open
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Home);
    while (combo.currentText() != name)
        QTest::keyClick(&combo, Qt::Key_Down);
    const std::vector<TrackPath> saved = stress.paths();
    stress.choose("comboBox_operation", "Load");
    EXPECT_EQ(stress.status(), "Load successfully.");
    ExpectSamePaths(WithoutMarks(stress.paths()), WithoutMarks(saved));
    stress.count("  loaded again");
}

void FileUser::checkSaved(const std::string& path) {
    stress.count("  files read back");
    SCOPED_TRACE(path);
    CheckSaved(FileContent(path), DiskUser::Map(), stress.paths());
}
