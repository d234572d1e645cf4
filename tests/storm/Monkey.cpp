#include "Monkey.h"

#include "DocumentSamples.h"
#include "EditingChecks.h"
#include "FolderTree.h"

#include <QApplication>
#include <QCheckBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>
#include <QStatusBar>
#include <QWheelEvent>

#include <array>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr int kPatience = 60000;                   ///< milliseconds, for the worker
constexpr std::chrono::seconds kStepPatience{120}; ///< for one event with all that follows from it
constexpr int kLargestParameter = 10000;
constexpr std::size_t kRemembered = 30;

const independent::Track& Map() {
    static const independent::Track map = SmallTrack();
    return map;
}

struct ParameterField {
    const char* name;
    std::vector<int> TrackPath::*values;
};
constexpr std::array<ParameterField, 3> kFields{{{"lineEdit_lineLength", &TrackPath::lengths},
                                                 {"lineEdit_lineWidth", &TrackPath::widths},
                                                 {"lineEdit_lineSpace", &TrackPath::spaces}}};

} // namespace

const std::vector<Monkey::Habit> Monkey::kHabits{
    {280, "move", &Monkey::moveMouse},
    {140, "press", &Monkey::pressMouse},
    {150, "release", &Monkey::releaseMouse},
    {40, "double click", &Monkey::doubleClick},
    {10, "other button", &Monkey::otherButton},
    {60, "go to a point", &Monkey::clickOnPoint},
    {50, "turn a spin box", &Monkey::turnSpinBox},
    {25, "type into a spin box", &Monkey::typeIntoSpinBox},
    {90, "type a parameter", &Monkey::typeParameter},
    {30, "slider", &Monkey::moveSlider},
    {45, "delete last", &Monkey::deleteLast},
    {4, "delete all", &Monkey::deleteAll},
    {20, "ruler", &Monkey::toggleRuler},
    {15, "batch", &Monkey::toggleBatch},
    {20, "wheel", &Monkey::turnWheel},
    {15, "choose a file", &Monkey::chooseFile},
    {14, "operation", &Monkey::operateOnFile},
    {4, "key on the operations", &Monkey::pressKeyOnOperations},
    {3, "source", &Monkey::chooseSource},
    {3, "sensor button", &Monkey::pressSensorButton},
    {3, "upload", &Monkey::upload},
    {1, "reset", &Monkey::resetSources},
    {3, "server", &Monkey::killOrRestartServer},
    {1, "reopen", &Monkey::reopenWindow},
    {8, "resize", &Monkey::resizeWindow},
    {15, "some key", &Monkey::pressSomeKey},
    {4, "another program", &Monkey::changeDiskBehindItsBack},
    {20, "events", &Monkey::letEventsRun},
};

Monkey::Monkey() = default;

Monkey::~Monkey() = default;

void Monkey::open(unsigned newSeed) {
    seed = newSeed;
    random.seed(seed);
    makeFiles();
    watchdog.emplace(kStepPatience);
    server.emplace("station");
    qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    openWindow();
    ASSERT_EQ(find<QComboBox>("comboBox_sensor").count(), 2) << "the server was not found";
}

void Monkey::makeFiles() {
    fs::create_directories("station/vdk/ContourPath");
    for (const char* name : {"one.trk", "two.trk", "N\xc3\xa4ht %s.trk"})
        WriteFile(std::string("station/vdk/ContourPath/") + name, randomTrackFile());
    makeBackup(folder.Path("a.osbak"),
               {{"A.trk", randomTrackFile()}, {"b.trk", randomTrackFile()}, {"cut.trk", "Info\n"}});
    makeBackup(folder.Path("empty.osbak"), {});
    WriteFile("broken.osbak", "no archive");
    WriteFile("A.trk", randomTrackFile());
    WriteFile("external.trk", randomTrackFile());
    const std::string whole = independent::BinaryFile(randomTrack());
    WriteFile("cut.trk", whole.substr(0, whole.size() - 7));
    WriteFile("empty.trk", "");
    externals = {"A.trk", "external.trk", "cut.trk", "empty.trk", "missing.trk", ""};
    for (const char* name : {"A.trk", "external.trk", "cut.trk", "empty.trk", "broken.osbak"})
        owned[name] = FileContent(name);
}

independent::Track Monkey::randomTrack() {
    std::vector<independent::Segment> segments;
    const int paths = pick(4);
    for (int path = 0; path < paths; ++path) {
        const auto points = PathAcross(path, 2 + pick(5), 0.2 + 0.2 * path, pick(kLargestParameter / 2));
        segments.insert(segments.end(), points.begin(), points.end());
    }
    return SmallTrack(segments);
}

std::string Monkey::randomTrackFile() {
    const independent::Track track = randomTrack();
    return chance(2) ? independent::BinaryFile(track) : independent::TextFile(track);
}

const Monkey::Habit& Monkey::anyHabit() {
    static const Habit opening{0, "open something", &Monkey::openSomething};
    constexpr int kPatienceWithoutTrack = 5;
    if (!hasTrack() && chance(kPatienceWithoutTrack))
        return opening;
    int all = 0;
    for (const Habit& habit : kHabits)
        all += habit.weight;
    int place = pick(all);
    auto habit = kHabits.begin();
    while (place >= habit->weight)
        place -= habit++->weight;
    return *habit;
}

void Monkey::act() {
    run(anyHabit());
}

void Monkey::run(const Habit& habit) {
    events.emplace_back(habit.name);
    if (events.size() > kRemembered)
        events.pop_front();
    ++counts[habit.name];
    counts["  with a track"] += hasTrack() ? 1 : 0;
    watchdog->BeginStep(habit.name + (" after: " + lastEvents()));
    (this->*habit.act)();
    answers.forgetFileNames(); // a name that no dialog asked for is not for the next one
    check();
    // Mostly it waits for the worker, sometimes it tries what it can do meanwhile.
    if (!window->isEnabled() && !chance(4))
        settle();
    watchdog->EndStep();
}

void Monkey::settle() {
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->isEnabled(); }, kPatience)) << "the worker hangs";
    ++counts["  " + status()];
    check();
}

std::string Monkey::lastEvents() const {
    std::string text;
    for (const std::string& event : events)
        text += event + "; ";
    return text;
}

void Monkey::report(unsigned number) const {
    std::printf("monkey: seed %u, %u events, the longest took %lld ms\n", seed, number,
                static_cast<long long>(watchdog->Longest().count()));
    for (const auto& [what, count] : counts)
        std::printf("  %7u  %s\n", count, what.c_str());
}

// Canvas

void Monkey::sendMouse(QEvent::Type type, Qt::MouseButton button) {
    QMaskWidget& target = canvas();
    QMouseEvent event(type, cursor, target.mapToGlobal(cursor), button, held, Qt::NoModifier);
    if (target.isEnabled()) // to a disabled window the system sends none
        QApplication::sendEvent(&target, &event);
}

void Monkey::moveMouse() {
    constexpr int kBeyond = 15; // the mouse is grabbed while a button is held
    const QSize size = canvas().size();
    if (chance(3))
        cursor += QPoint(pick(13) - 6, pick(13) - 6);
    else
        cursor =
            QPoint(pick(size.width() + 2 * kBeyond) - kBeyond, pick(size.height() + 2 * kBeyond) - kBeyond);
    sendMouse(QEvent::MouseMove, Qt::NoButton);
}

void Monkey::pressMouse() {
    held |= Qt::LeftButton;
    sendMouse(QEvent::MouseButtonPress, Qt::LeftButton);
}

void Monkey::releaseMouse() {
    held &= ~Qt::LeftButton;
    sendMouse(QEvent::MouseButtonRelease, Qt::LeftButton);
}

void Monkey::doubleClick() {
    held |= Qt::LeftButton;
    sendMouse(QEvent::MouseButtonDblClick, Qt::LeftButton);
}

void Monkey::otherButton() {
    const Qt::MouseButton button = chance(2) ? Qt::RightButton : Qt::MiddleButton;
    held |= button;
    sendMouse(QEvent::MouseButtonPress, button);
    held &= ~Qt::MouseButtons(button);
    sendMouse(QEvent::MouseButtonRelease, button);
}

/// Where a point is, so that dragging happens.
void Monkey::clickOnPoint() {
    if (paths().empty())
        return;
    const TrackPath& path = oneOf(paths());
    const QPointF point = oneOf(path.points);
    cursor = QPoint(qRound(point.x() * canvas().width()), qRound(point.y() * canvas().height()));
    sendMouse(QEvent::MouseMove, Qt::NoButton);
}

// Controls

void Monkey::turnSpinBox() {
    auto& box = find<QSpinBox>(chance(2) ? "spinBox_pathId" : "spinBox_segmentId");
    const int before = box.value();
    QTest::keyClick(&box, oneKey({Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown}));
    checkChosen(box, before);
}

void Monkey::typeIntoSpinBox() {
    const char* const name = chance(2) ? "spinBox_pathId" : "spinBox_segmentId";
    const auto& box = find<QSpinBox>(name);
    const int before = box.value();
    typeNumber(name, oneOf<std::string>({"1", "2", "3", "9", "10000", "0"}));
    checkChosen(box, before);
}

/// What a box was turned to exists, and is what the canvas works on.
void Monkey::checkChosen(const QSpinBox& box, int before) {
    if (box.value() == before)
        return;
    const EditingState& state = canvas().editingState();
    const auto path = static_cast<std::size_t>(state.currentPath);
    if (box.objectName() == QStringLiteral("spinBox_pathId")) {
        EXPECT_LE(box.value(), std::max<std::size_t>(paths().size(), 1));
        EXPECT_TRUE(paths().empty() || state.currentPath == box.value() - 1);
    } else if (path < paths().size() && paths()[path].points.size() > 1) {
        EXPECT_LT(box.value(), static_cast<int>(paths()[path].points.size()));
        EXPECT_EQ(state.currentSegment, box.value() - 1);
    } else {
        EXPECT_EQ(box.value(), 1);
    }
}

void Monkey::typeParameter() {
    const auto index = static_cast<std::size_t>(pick(static_cast<int>(kFields.size())));
    auto& field = find<QLineEdit>(kFields.at(index).name);
    const QString before = field.text();
    if (chance(3))
        field.selectAll();
    const std::string letters = "0123456789-+.,e x\b";
    const char letter = letters[static_cast<std::size_t>(pick(static_cast<int>(letters.size())))];
    if (letter == '\b' || chance(5))
        QTest::keyClick(&field, Qt::Key_Backspace);
    else
        QTest::keyClick(&field, letter);
    if (field.text() != before)
        checkParameter(index, field.text().toStdString());
}

/// What was typed is what the chosen segment has, or everything in batch mode.
void Monkey::checkParameter(std::size_t field, const std::string& text) {
    const int value = QString::fromStdString(text).toInt();
    const EditingState& state = canvas().editingState();
    const auto& valuesOf = kFields.at(field).values;
    if (find<QCheckBox>("checkBox_batchSetting").isChecked()) {
        for (const TrackPath& path : state.paths)
            EXPECT_EQ(path.*valuesOf, std::vector<int>(path.points.size(), value));
    } else if (canvas().segmentExists(state.currentPath, state.currentSegment)) {
        const TrackPath& path = state.paths[static_cast<std::size_t>(state.currentPath)];
        EXPECT_EQ((path.*valuesOf)[static_cast<std::size_t>(state.currentSegment)], value);
    }
}

/// Over the canvas, the controls, and the lists, where it chooses and so operates.
void Monkey::turnWheel() {
    constexpr int kNotch = 120;
    auto& widget = find<QWidget>(
        oneOf<const char*>({"label_mask", "label_mask", "scrollArea", "horizontalSlider_resizeImage",
                            "spinBox_pathId", "spinBox_segmentId", "lineEdit_lineLength", "comboBox_file",
                            "comboBox_operation", "comboBox_sensor"}));
    if (!widget.isEnabled())
        return;
    const QPoint place(widget.width() / 2, widget.height() / 2);
    const QPoint turn(0, chance(2) ? kNotch : -kNotch);
    QWheelEvent event(place, widget.mapToGlobal(place), QPoint(), turn, held, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

void Monkey::moveSlider() {
    QTest::keyClick(&find<QSlider>("horizontalSlider_resizeImage"),
                    oneKey({Qt::Key_Left, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_PageUp,
                            Qt::Key_Home, Qt::Key_End}));
}

void Monkey::resizeWindow() {
    window->resize(300 + pick(900), 200 + pick(700));
}

void Monkey::pressSomeKey() {
    const auto widgets = window->findChildren<QWidget*>();
    QWidget* const widget = widgets[pick(widgets.size())];
    if (qobject_cast<QComboBox*>(widget) != nullptr || !widget->isVisible() || !widget->isEnabled())
        return;
    QTest::keyClick(widget, oneKey({Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Escape, Qt::Key_Return,
                                    Qt::Key_Delete, Qt::Key_Home, Qt::Key_F1, Qt::Key_A}));
}

void Monkey::letEventsRun() {
    QCoreApplication::processEvents();
}

// Files and sources

/// The next file dialog gets this name of the working folder, or is cancelled.
void Monkey::typeName(const std::string& name) {
    answers.typeFileName(QString::fromStdString(name.empty() ? name : folder.Path(name)));
}

/// The shortest way from where the window stands to a track.
void Monkey::openSomething() {
    if (!window->isEnabled())
        return;
    if (find<QComboBox>("comboBox_operation").isEnabled()) {
        if (find<QComboBox>("comboBox_file").currentText() == QStringLiteral("External"))
            typeName(oneOf(externals));
        operate("Load");
        static_cast<void>(answers.takeFileDialogs());
    } else {
        if (serverMoved && !serverAway)
            resetSources();
        if (serverAway)
            QTest::keyClick(&find<QComboBox>("comboBox_sensor"), Qt::Key_End);
        pressSensorButton();
    }
}

void Monkey::chooseFile() {
    auto& combo = find<QComboBox>("comboBox_file");
    QTest::keyClick(&combo, oneKey({Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End}));
}

/// Keys that choose without the list's being open; a dialog that comes of it is cancelled.
void Monkey::pressKeyOnOperations() {
    auto& combo = find<QComboBox>("comboBox_operation");
    QTest::keyClick(&combo, oneKey({Qt::Key_Down, Qt::Key_Up, Qt::Key_End, Qt::Key_Home, Qt::Key_S, Qt::Key_D,
                                    Qt::Key_L, Qt::Key_R}));
}

void Monkey::operate(const std::string& operation) {
    find<QStatusBar>("statusBar").clearMessage();
    events.back() += " " + operation;
    choose("comboBox_operation", operation);
    ++counts["  " + status()];
    if (status() == "Save successfully.") {
        checkSaved(kTracks + text("label_fileName"));
        if (chance(4))
            loadSavedAgain();
    }
}

void Monkey::operateOnFile() {
    if (!find<QComboBox>("comboBox_operation").isEnabled() || !window->isEnabled())
        return;
    std::string operation =
        oneOf<std::string>({"Load", "Load", "Load", "Save", "Save", "Save As", "Delete", "Refresh"});
    const bool external = find<QComboBox>("comboBox_file").currentText() == QStringLiteral("External");
    // Dialogs take long.
    if ((operation == "Save As" || (operation == "Load" && external)) && !chance(4))
        operation = "Save";
    const std::string typed = operation == "Save As"
                                  ? oneOf<std::string>({"saved.trk", "other.trk", "", "no/where.trk"})
                                  : oneOf(externals);
    if (operation == "Save As" || (operation == "Load" && external))
        typeName(typed);
    operate(operation);
    const std::vector<SeenFileDialog> dialogs = answers.takeFileDialogs();
    if (status() == "Save As successfully." && dialogs.size() == 1 && !typed.empty())
        checkSaved(folder.Path(typed));
    checkFilesAlone();
}

/// What the window reads of a track that it has just saved is what it wrote.
void Monkey::loadSavedAgain() {
    const QString name = QString::fromStdString(text("label_fileName"));
    auto& combo = find<QComboBox>("comboBox_file");
    if (combo.findText(name) < 0)
        return; // deleted from the list while it was open
    QTest::keyClick(&combo, Qt::Key_Home);
    while (combo.currentText() != name)
        QTest::keyClick(&combo, Qt::Key_Down);
    const std::vector<TrackPath> saved = paths();
    choose("comboBox_operation", "Load");
    EXPECT_EQ(status(), "Load successfully.");
    ExpectSamePaths(WithoutMarks(paths()), WithoutMarks(saved));
    ++counts["  loaded again"];
}

void Monkey::chooseSource() {
    auto& combo = find<QComboBox>("comboBox_sensor");
    QTest::keyClick(&combo, oneKey({Qt::Key_Up, Qt::Key_Down}));
}

void Monkey::pressSensorButton() {
    if (!window->isEnabled())
        return;
    if (text("pushButton_sensor") == "Load Backup") {
        const std::string name =
            oneOf<std::string>({"a.osbak", "a.osbak", "empty.osbak", "broken.osbak", ""});
        typeName(name);
    }
    events.back() += " " + text("pushButton_sensor");
    find<QStatusBar>("statusBar").clearMessage();
    click("pushButton_sensor");
    ++counts["  " + status()];
}

void Monkey::upload() {
    click("toolButton_upload");
    ++counts["  " + status()];
    if (status() != "Restoring the sensor ..." || chance(3))
        return;
    settle();
    if (status() == "Restoring successfully.") {
        ++counts["  workspaces compared"];
        EXPECT_TRUE(FolderTree("station") == FolderTree("TmpDirOsws")) << "the server has other files";
    }
}

void Monkey::resetSources() {
    click("toolButton_reset");
    serverMoved = serverAway;
}

/// In the middle of whatever it does; it comes back with its workspace on other ports.
void Monkey::killOrRestartServer() {
    if (serverAway) {
        server->Restart();
        qputenv("OSTRA_DISCOVERY", server->DiscoveryAddress().c_str());
    } else {
        if (!chance(3))
            return;
        server->Kill();
    }
    serverAway = !serverAway;
    serverMoved = true;
    events.back() += serverAway ? " killed" : " started";
}

void Monkey::reopenWindow() {
    settle();
    closeWindow();
    for (const char* working : {"TmpDirBackup", "TmpDirOsws", "Ostra.osbak", "temp.trk"})
        EXPECT_FALSE(fs::exists(working)) << working;
    checkBoxes();
    held = Qt::NoButton;
    openWindow();
    serverMoved = serverAway;
}

/// Another program deletes, damages or replaces a track of the workspace.
void Monkey::changeDiskBehindItsBack() {
    if (!fs::is_directory(kTracks) || !window->isEnabled())
        return;
    const std::string path =
        kTracks + oneOf<std::string>({"A.trk", "b.trk", "one.trk", "two.trk", "external.trk"});
    const int what = pick(6);
    events.back() += " " + std::to_string(what) + " " + path;
    if (what == 0)
        fs::remove(path);
    else if (what == 1)
        WriteFile(path, randomTrackFile().substr(0, static_cast<std::size_t>(pick(3000))));
    else
        WriteFile(path, randomTrackFile());
}

// Checks

void Monkey::check() {
    // Without a picture nothing is painted, and the ruler is not computed.
    CheckEditing(canvas().editingState(), window->rulerShown() && hasTrack());
    checkWindow();
    checkBoxes();
}

void Monkey::checkWindow() {
    EXPECT_GT(canvas().width(), 0);
    EXPECT_GT(canvas().height(), 0);
    EXPECT_EQ(find<QComboBox>("comboBox_operation").currentIndex(), 0);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    const bool fromFile = find<QComboBox>("comboBox_sensor").currentText() == QStringLiteral("Backup File");
    EXPECT_EQ(text("pushButton_sensor") == "Load Backup", fromFile);
    EXPECT_EQ(find<QComboBox>("comboBox_sensor").isEnabled(),
              window->isEnabled() && text("pushButton_sensor") != "Disconnect Sensor");
}

void Monkey::checkBoxes() {
    for (const SeenBox& box : answers.takeBoxes()) {
        EXPECT_EQ(box.title.toStdString(), "Error");
        EXPECT_EQ(box.shownText, box.text);
        EXPECT_TRUE(IsKnownMessage(box.text.toStdString())) << box.text.toStdString();
        std::string kind = box.text.toStdString();
        kind = kind.substr(kind.find(" - ") == std::string::npos ? 0 : kind.find(" - ") + 3);
        ++counts["  box: " + kind.substr(0, 40)];
    }
}

void Monkey::checkFilesAlone() {
    for (const auto& [name, content] : owned)
        EXPECT_TRUE(FileContent(name) == content) << name << " has changed";
    EXPECT_FALSE(fs::exists("missing.trk"));
    EXPECT_FALSE(fs::exists("temp.trk"));
    for (const std::string& directory : {std::string("."), kTracks}) {
        if (!fs::is_directory(directory))
            continue;
        for (const auto& entry : fs::directory_iterator(directory))
            EXPECT_NE(entry.path().filename().string().rfind(".corvane-", 0), 0U) << entry.path();
    }
}

void Monkey::checkSaved(const std::string& path) {
    ++counts["  files read back"];
    SCOPED_TRACE(path);
    CheckSaved(FileContent(path), Map(), paths());
}
