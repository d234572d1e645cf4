#include "SourceUser.h"

#include "EditingChecks.h"
#include "FolderTree.h"

#include <QStatusBar>

#include <filesystem>

namespace fs = std::filesystem;

void SourceUser::open() {
    server.emplace("station");
    qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    stress.openWindow();
    ASSERT_EQ(stress.find<QComboBox>("comboBox_sensor").count(), 2) << "the server was not found";
}

void SourceUser::openSource() {
    if (serverMoved && !serverAway)
        reset();
    if (serverAway)
        pressInSourceList(Qt::Key_End);
    pressSensorButton();
}

void SourceUser::chooseSource() {
    pressInSourceList(random.oneOf<Qt::Key>({Qt::Key_Up, Qt::Key_Down}));
}

void SourceUser::pressInSourceList(Qt::Key key) {
    auto& combo = stress.find<QComboBox>("comboBox_sensor");
    combo.setFocus();
    QTest::keyClick(&combo, key);
}

void SourceUser::pressSensorButton() {
    if (!stress.window->isEnabled())
        return;
    if (stress.text("pushButton_sensor") == "Load Backup") {
        const std::string name =
            random.oneOf<std::string>({"a.osbak", "a.osbak", "empty.osbak", "broken.osbak", ""});
        stress.typeName(name);
    }
    stress.note(stress.text("pushButton_sensor"));
    stress.find<QStatusBar>("statusBar").clearMessage();
    stress.click("pushButton_sensor");
    stress.countStatus();
}

void SourceUser::upload() {
    stress.click("toolButton_upload");
    stress.countStatus();
    if (stress.status() != "Restoring the sensor ..." || random.chance(3))
        return;
    stress.settle();
    if (stress.status() == "Restoring successfully.") {
        stress.count("  workspaces compared");
        EXPECT_TRUE(FolderTree("station") == FolderTree("TmpDirOsws")) << "the server has other files";
    }
}

void SourceUser::reset() {
    stress.click("toolButton_reset");
    serverMoved = serverAway;
}

/// Kills the server at any moment, or restarts it with its workspace on other ports.
void SourceUser::killOrRestartServer() {
    if (serverAway) {
        server->Restart();
        qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    } else {
        if (!random.chance(3))
            return;
        server->Kill();
    }
    serverAway = !serverAway;
    serverMoved = true;
    stress.note(serverAway ? "killed" : "started");
}

void SourceUser::reopenWindow() {
    stress.settle();
    stress.closeWindow();
    for (const char* working : {"TmpDirBackup", "TmpDirOsws", "Ostra.osbak", "temp.trk"})
        EXPECT_FALSE(fs::exists(working)) << working;
    stress.count("  copies kept", CheckKept(stress.folder.Path("kept")));
    stress.checkBoxes();
    stress.held = Qt::NoButton;
    stress.openWindow();
    serverMoved = serverAway;
}
