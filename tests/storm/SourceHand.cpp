#include "SourceHand.h"

#include "EditingChecks.h"
#include "FolderTree.h"

#include <QStatusBar>

#include <filesystem>

namespace fs = std::filesystem;

void SourceHand::open() {
    server.emplace("station");
    qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    storm.openWindow();
    ASSERT_EQ(storm.find<QComboBox>("comboBox_sensor").count(), 2) << "the server was not found";
}

void SourceHand::openSource() {
    if (serverMoved && !serverAway)
        reset();
    if (serverAway)
        pressInSourceList(Qt::Key_End);
    pressSensorButton();
}

void SourceHand::chooseSource() {
    pressInSourceList(random.oneOf<Qt::Key>({Qt::Key_Up, Qt::Key_Down}));
}

void SourceHand::pressInSourceList(Qt::Key key) {
    auto& combo = storm.find<QComboBox>("comboBox_sensor");
    combo.setFocus();
    QTest::keyClick(&combo, key);
}

void SourceHand::pressSensorButton() {
    if (!storm.window->isEnabled())
        return;
    if (storm.text("pushButton_sensor") == "Load Backup") {
        const std::string name =
            random.oneOf<std::string>({"a.osbak", "a.osbak", "empty.osbak", "broken.osbak", ""});
        storm.typeName(name);
    }
    storm.note(storm.text("pushButton_sensor"));
    storm.find<QStatusBar>("statusBar").clearMessage();
    storm.click("pushButton_sensor");
    storm.countStatus();
}

void SourceHand::upload() {
    storm.click("toolButton_upload");
    storm.countStatus();
    if (storm.status() != "Restoring the sensor ..." || random.chance(3))
        return;
    storm.settle();
    if (storm.status() == "Restoring successfully.") {
        storm.count("  workspaces compared");
        EXPECT_TRUE(FolderTree("station") == FolderTree("TmpDirOsws")) << "the server has other files";
    }
}

void SourceHand::reset() {
    storm.click("toolButton_reset");
    serverMoved = serverAway;
}

/// In the middle of whatever it does; it comes back with its workspace on other ports.
void SourceHand::killOrRestartServer() {
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
    storm.note(serverAway ? "killed" : "started");
}

void SourceHand::reopenWindow() {
    storm.settle();
    storm.closeWindow();
    for (const char* working : {"TmpDirBackup", "TmpDirOsws", "Ostra.osbak", "temp.trk"})
        EXPECT_FALSE(fs::exists(working)) << working;
    storm.count("  copies kept", CheckKept(storm.folder.Path("kept")));
    storm.checkBoxes();
    storm.held = Qt::NoButton;
    storm.openWindow();
    serverMoved = serverAway;
}
