#include "Tour.h"

#include "IndependentTrack.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

constexpr auto kTrackFolder = "TmpDirOsws/vdk/ContourPath/";

void Say(const std::string& step) {
    std::printf("  %s\n", step.c_str());
    std::fflush(stdout);
}

void Begin(const std::string& scenario) {
    std::printf("%s\n", scenario.c_str());
    std::fflush(stdout);
}

/// Whether a file, read independently of the editor's code, has the paths of the canvas.
bool FileHolds(const std::string& path, const std::vector<TrackPath>& canvas) {
    const std::vector<independent::Segment> stored = independent::ReadBinary(FileContent(path)).segments;
    std::size_t next = 0;
    for (std::size_t number = 0; number < canvas.size(); ++number) {
        const TrackPath& drawn = canvas[number];
        for (std::size_t point = 0; point < drawn.points.size(); ++point, ++next) {
            if (next >= stored.size())
                return false;
            const independent::Segment& record = stored[next];
            if (record.path != static_cast<int>(number) || record.point != static_cast<int>(point) ||
                QPointF(record.relativeX, record.relativeY) != drawn.points[point] ||
                record.method != drawn.methods[point] || record.length != drawn.lengths[point] ||
                record.width != drawn.widths[point] || record.space != drawn.spaces[point])
                return false;
        }
    }
    return next == stored.size();
}

bool SamePaths(const std::vector<TrackPath>& before, const std::vector<TrackPath>& after) {
    return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                      [](const TrackPath& a, const TrackPath& b) {
                          return a.points == b.points && a.methods == b.methods && a.lengths == b.lengths &&
                                 a.widths == b.widths && a.spaces == b.spaces;
                      });
}

/// The name of the first track in a folder, by name.
std::string FirstTrackIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".trk")
            names.insert(entry.path().filename().string());
    Stage::Expect(!names.empty(), folder + " holds a track");
    return *names.begin();
}

/// Unpacks an archive with the system's own tar.
void UnpackWithTar(const std::string& archive, const std::string& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    const std::string command = "tar -xf \"" + archive + "\" -C \"" + folder + "\"";
    Stage::Expect(std::system(command.c_str()) == 0, "tar reads " + archive);
}

} // namespace

Tour::Tour(Stage& stage, std::string workspace) : stage(stage), workspace(std::move(workspace)) {
}

void Tour::Run() {
    stage.Open();
    stage.Picture("start");
    EditABackupFile();
    EditAnExternalTrack("fault.trk");
    EditAServersWorkspace();
}

void Tour::RunMainScenario() {
    stage.Open();
    EditABackupFile();
    const std::string longName = std::string(120, 'W') + ".trk";
    std::filesystem::copy_file("fault.trk", longName);
    EditAnExternalTrack(longName);
    stage.OpenList("comboBox_file");
    stage.Picture("list");
    stage.user.Key("Escape");
    Stage::Expect(stage.IsOnScreen(), "the window is on the screen completely");
}

void Tour::EditABackupFile() {
    Begin("A backup file");
    Say("choose \"Backup File\" and load station.osbak");
    stage.Choose("comboBox_sensor", QStringLiteral("Backup File"));
    stage.ClickOn("pushButton_sensor");
    stage.AnswerFileDialog("station.osbak");
    WaitForStatus(QStringLiteral("Load backup file successfully."));
    stage.Picture("backup-open");

    const std::string track = FirstTrackIn(kTrackFolder);
    Load(QString::fromStdString(track));
    stage.Picture("track-loaded");
    DrawAPath();
    DragItsLastPoint();
    SetParameters();
    HideAndShowTheRuler();
    SaveAndReload(QString::fromStdString(track));

    Say("save it to the backup file, and look into that with tar");
    stage.ClickOn("toolButton_upload");
    WaitForStatus(QStringLiteral("Saved the backup file successfully."));
    UnpackWithTar("station.osbak", "seen/backup");
    UnpackWithTar("seen/backup/workspaces/Workspace.osws", "seen/workspace");
    Stage::Expect(FileHolds("seen/workspace/vdk/ContourPath/" + track, stage.PathsOnCanvas()),
                  "the backup file holds the paths that were drawn");
}

void Tour::EditAnExternalTrack(const std::string& name) {
    Begin("An external text track");
    Say("choose \"External\" and load " + name);
    stage.Choose("comboBox_file", QStringLiteral("External"));
    stage.Choose("comboBox_operation", QStringLiteral("Load"));
    stage.AnswerFileDialog(name);
    WaitForStatus(QStringLiteral("Load successfully."));
    stage.Picture("text-track-loaded");
    DrawAPath();

    Say("save it: it goes into the workspace, the external file stays as it is");
    const std::string before = FileContent(name);
    stage.Choose("comboBox_operation", QStringLiteral("Save"));
    WaitForStatus(QStringLiteral("Save successfully."));
    Stage::Expect(FileContent(name) == before, "the external file is unchanged");
    const QString saved = stage.TextOf("label_fileName");
    Stage::Expect(FileHolds(kTrackFolder + saved.toStdString(), stage.PathsOnCanvas()),
                  "the workspace's file holds the paths that were drawn");
    stage.Picture("text-track-saved");
}

void Tour::EditAServersWorkspace() {
    Begin("A server's workspace");
    Say("look for servers, choose the one that answers and connect");
    stage.ClickOn("toolButton_reset");
    WaitForStatus(QStringLiteral("Reset successfully."));
    stage.Choose("comboBox_sensor", QStringLiteral("127.0.0.1"));
    stage.ClickOn("pushButton_sensor");
    stage.WaitUntil([this] { return stage.IsBusy(); }, "the busy sign turns");
    Stage::Expect(!stage.IsEnabled("pushButton_sensor"), "the window is disabled while the server is asked");
    stage.Picture("busy");
    WaitForStatus(QStringLiteral("Connect successfully."));
    stage.Picture("connected");

    const std::string track = FirstTrackIn(kTrackFolder);
    Load(QString::fromStdString(track));
    DrawAPath();
    DragItsLastPoint();
    SetParameters();
    SaveAndReload(QString::fromStdString(track));

    Say("sync it back, and compare what the server holds");
    stage.ClickOn("toolButton_upload");
    WaitForStatus(QStringLiteral("Restoring successfully."));
    Stage::Expect(FileHolds(workspace + "/vdk/ContourPath/" + track, stage.PathsOnCanvas()),
                  "the server holds the paths that were drawn");
    stage.Picture("synced");

    Say("disconnect");
    stage.ClickOn("pushButton_sensor");
    WaitForStatus(QStringLiteral("Disconnect successfully."));
}

void Tour::Load(const QString& name) {
    Say("load " + name.toStdString());
    stage.Choose("comboBox_file", name);
    stage.Choose("comboBox_operation", QStringLiteral("Load"));
    WaitForStatus(QStringLiteral("Load successfully."));
    Stage::Expect(stage.TextOf("label_fileName") == name, "the window names the file");
}

void Tour::DrawAPath() {
    // At a fixed scale the canvas has the same size on every desktop, and the drawn points the same
    // positions.
    Say("show it at 100 %");
    stage.Activate();
    stage.user.ControlKey("1");
    stage.WaitUntil([this] { return stage.TextOf("label_scale") == QStringLiteral("Scale:100%"); },
                    "the scale is 100 %");
    // The paths of a loaded track are open until each is closed.
    Say("close what is open, then draw a path of four points");
    const std::size_t before = stage.PathsOnCanvas().size();
    for (std::size_t closed = 0; closed < before; ++closed)
        stage.user.DoubleClick(stage.PlaceOf(stage.PathsOnCanvas().back().points.back()));
    stage.user.MoveTo(stage.OnCanvas(0.15, 0.2));
    for (const QPointF& place : {QPointF(0.15, 0.2), QPointF(0.35, 0.45), QPointF(0.6, 0.35)})
        stage.user.Click(stage.OnCanvas(place.x(), place.y()));
    stage.user.DoubleClick(stage.OnCanvas(0.8, 0.7));
    stage.WaitUntil(
        [&] {
            const std::vector<TrackPath> paths = stage.PathsOnCanvas();
            return paths.size() == before + 1 && paths.back().points.size() == 4;
        },
        "one path of four points was added");
    stage.Picture("path-drawn");
}

void Tour::DragItsLastPoint() {
    Say("drag its last point");
    const QPointF before = stage.PathsOnCanvas().back().points.back();
    const QPoint target = stage.OnCanvas(0.7, 0.85);
    stage.user.Drag(stage.PlaceOf(before), target);
    stage.WaitUntil(
        [&] {
            const QPoint now = stage.PlaceOf(stage.PathsOnCanvas().back().points.back());
            return (now - target).manhattanLength() <= 1;
        },
        "the point is where the mouse button was released");
    Stage::Expect(stage.PathsOnCanvas().back().points.size() == 4, "the drag added no point");
    stage.Picture("point-dragged");
}

void Tour::SetParameters() {
    Say("set the parameters of its second segment");
    const std::size_t path = stage.PathsOnCanvas().size();
    stage.Enter("spinBox_pathId", std::to_string(path));
    stage.Enter("spinBox_segmentId", "2");
    stage.Enter("lineEdit_lineLength", "40");
    stage.Enter("lineEdit_lineWidth", "12");
    stage.Enter("lineEdit_lineSpace", "30");
    stage.WaitUntil(
        [&] {
            const TrackPath drawn = stage.PathsOnCanvas().back();
            return drawn.lengths == std::vector<int>({100, 40, 100, 100}) &&
                   drawn.widths == std::vector<int>({50, 12, 50, 50}) &&
                   drawn.spaces == std::vector<int>({100, 30, 100, 100});
        },
        "the second segment alone has the new parameters");
    stage.Picture("parameters-set");
}

void Tour::HideAndShowTheRuler() {
    Say("hide the ruler and show it again");
    stage.ClickOn("pushButton_getRuler");
    stage.WaitUntil([this] { return stage.TextOf("pushButton_getRuler") == QStringLiteral("Show Ruler"); },
                    "the ruler is hidden");
    Stage::Expect(stage.PathsOnCanvas().back().rulerMarks.empty(), "a hidden ruler has no marks");
    stage.Picture("ruler-hidden");
    stage.ClickOn("pushButton_getRuler");
    stage.WaitUntil([this] { return stage.TextOf("pushButton_getRuler") == QStringLiteral("Hide Ruler"); },
                    "the ruler is shown");
    Stage::Expect(stage.PathsOnCanvas().back().rulerMarks.size() == 3, "each segment has its marks again");
}

void Tour::SaveAndReload(const QString& name) {
    Say("save, compare the file, load it again and compare the canvas");
    stage.Choose("comboBox_operation", QStringLiteral("Save"));
    WaitForStatus(QStringLiteral("Save successfully."));
    const std::vector<TrackPath> drawn = stage.PathsOnCanvas();
    Stage::Expect(FileHolds(kTrackFolder + name.toStdString(), drawn), "the file holds what was drawn");
    Load(name);
    Stage::Expect(SamePaths(drawn, stage.PathsOnCanvas()), "the canvas shows what was saved");
    stage.Picture("reloaded");
}

void Tour::WaitForStatus(const QString& text) const {
    stage.WaitUntil([&] { return stage.StatusText() == text; }, "the status bar says " + text.toStdString());
}
