#pragma once

#include "OstraServerProcess.h"
#include "Watchdog.h"
#include "WindowTest.h"

#include <deque>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

/// A seeded hand that does to the real window whatever an operator could do, sensible or not, and looks after
/// every event whether what the window and its canvas hold still makes sense, and after every save whether
/// the file does. The same seed gives the same events, but for how long the server takes.
class Monkey : public WindowTest {
  protected:
    Monkey();
    ~Monkey() override;

    /// Opens the window beside a server, backup files and tracks, good and damaged ones.
    void open(unsigned seed);
    /// One event, and the checks after it.
    void act();
    /// The events before a failure, the last one last.
    [[nodiscard]] std::string lastEvents() const;
    void report(unsigned events) const;
    /// Whether there is a picture to work on.
    [[nodiscard]] bool hasTrack() { return !canvas().pixmap(Qt::ReturnByValue).isNull(); }

  private:
    struct Habit {
        int weight;
        const char* name;
        void (Monkey::*act)();
    };
    static const std::vector<Habit> kHabits;

    int pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    bool chance(int oneIn) { return pick(oneIn) == 0; }
    template<typename Item>
    const Item& oneOf(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(pick(static_cast<int>(items.size())))];
    }
    Qt::Key oneKey(const std::vector<Qt::Key>& keys) { return oneOf(keys); }

    void run(const Habit& habit);
    const Habit& anyHabit();

    void makeFiles();
    independent::Track randomTrack();
    std::string randomTrackFile();

    void sendMouse(QEvent::Type type, Qt::MouseButton button);
    void moveMouse();
    void pressMouse();
    void releaseMouse();
    void doubleClick();
    void otherButton();
    void clickOnPoint();
    void turnSpinBox();
    void typeIntoSpinBox();
    void typeParameter();
    void checkParameter(std::size_t field, const std::string& text);
    void moveSlider();
    void turnWheel();
    void deleteLast() { click("pushButton_deleteLast"); }
    void deleteAll() { click("pushButton_deleteAll"); }
    void toggleRuler() { click("pushButton_getRuler"); }
    void toggleBatch() { click("checkBox_batchSetting"); }
    void typeName(const std::string& name);
    void openSomething();
    void chooseFile();
    void operateOnFile();
    void pressKeyOnOperations();
    void operate(const std::string& operation);
    void loadSavedAgain();
    void chooseSource();
    void pressSensorButton();
    void upload();
    void resetSources();
    void killOrRestartServer();
    void reopenWindow();
    void resizeWindow();
    void pressSomeKey();
    void changeDiskBehindItsBack();
    void letEventsRun();

    void settle();
    void check();
    void checkWindow();
    void checkBoxes();
    void checkChosen(const QSpinBox& box, int before);
    void checkFilesAlone();
    void checkSaved(const std::string& path);

    unsigned seed = 0;
    std::mt19937 random;
    std::optional<OstraServerProcess> server;
    bool serverAway = false;
    bool serverMoved = false; ///< the window's list of servers is not true any more
    Qt::MouseButtons held = Qt::NoButton;
    QPoint cursor;
    std::deque<std::string> events;
    std::map<std::string, unsigned> counts;
    std::vector<std::string> externals;       ///< files that a dialog may be told
    std::map<std::string, std::string> owned; ///< files that nothing may change, and their contents
    std::optional<Watchdog> watchdog;
};
