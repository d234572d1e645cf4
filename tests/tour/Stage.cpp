#include "Stage.h"

#include "canvas/qmaskwidget.h"
#include "window/WaitingSpinnerWidget.h"
#include "window/mainwindow.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QScreen>
#include <QStatusBar>
#include <QThread>
#include <QWindow>

#include <chrono>
#include <stdexcept>
#include <thread>

Stage::Stage(MainWindow& window, std::string pictures) : window(window), pictures(std::move(pictures)) {
}

void Stage::Open() const {
    Look([&] {
        window.move(20, 20);
        window.show();
    });
    Activate();
}

void Stage::Activate() const {
    Look([&] { window.activateWindow(); });
    WaitUntil([&] { return window.isActiveWindow() && window.windowHandle()->isExposed(); },
              "the window is open");
}

void Stage::Look(const std::function<void()>& look) const {
    const bool onItsThread = QThread::currentThread() == qApp->thread();
    QMetaObject::invokeMethod(qApp, look, onItsThread ? Qt::DirectConnection : Qt::BlockingQueuedConnection);
}

void Stage::WaitUntil(const std::function<bool()>& condition, const std::string& what) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    bool met = false;
    while (!met) {
        Look([&] { met = condition(); });
        if (!met && std::chrono::steady_clock::now() > end)
            throw std::runtime_error("waited in vain: " + what);
        if (!met)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

void Stage::Expect(bool condition, const std::string& what) {
    if (!condition)
        throw std::runtime_error("it is not true that " + what);
}

void Stage::Picture(const std::string& name) {
    std::this_thread::sleep_for(std::chrono::milliseconds(150)); // until the screen shows the last event
    const int number = ++pictureCount;
    const std::string file =
        pictures + (number < 10 ? "/0" : "/") + std::to_string(number) + "-" + name + ".png";
    bool saved = false;
    Look([&] { saved = QApplication::primaryScreen()->grabWindow(0).save(QString::fromStdString(file)); });
    Expect(saved, "the picture " + file + " was written");
}

void Stage::ClickOn(const char* widget) {
    user.Click(CentreOf(widget));
}

void Stage::OpenList(const char* comboBox) {
    auto* const box = Find<QComboBox>(comboBox);
    WaitUntil([&] { return box->isEnabled() && box->isVisible(); }, std::string(comboBox) + " can be used");
    ClickOn(comboBox);
    WaitUntil([&] { return box->view()->isVisible(); }, std::string(comboBox) + " shows its list");
}

void Stage::Choose(const char* comboBox, const QString& item) {
    OpenList(comboBox);
    auto* const box = Find<QComboBox>(comboBox);
    QPoint place;
    Look([&] {
        const int row = box->findText(item);
        if (row >= 0)
            place = OnScreen(*box->view()->viewport(),
                             box->view()->visualRect(box->model()->index(row, 0)).center());
    });
    Expect(!place.isNull(), std::string(comboBox) + " offers " + item.toStdString());
    user.Click(place);
    // An operation may open a dialog directly; the list is closed in any case.
    WaitUntil([&] { return !box->view()->isVisible(); }, std::string(comboBox) + " closes its list");
}

void Stage::Enter(const char* widget, const std::string& text) {
    ClickOn(widget);
    user.ControlKey("a");
    user.Type(text);
    user.Key("Tab");
}

void Stage::AnswerFileDialog(const std::string& path) {
    QLineEdit* name = nullptr;
    WaitUntil(
        [&] {
            auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            name = dialog != nullptr ? dialog->findChild<QLineEdit*>() : nullptr;
            return name != nullptr && name->isVisible();
        },
        "a file dialog is open");
    QPoint place;
    Look([&] {
        name->window()->activateWindow();
        place = OnScreen(*name, name->rect().center());
    });
    user.Click(place);
    WaitUntil([&] { return name->hasFocus(); }, "the dialog takes the name");
    user.ControlKey("a");
    user.Type(path);
    WaitUntil([&] { return name->text().toStdString() == path; }, "the name is in the dialog");
    user.Key("Return");
    WaitUntil([] { return qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) == nullptr; },
              "the file dialog closes");
}

QString Stage::StatusText() const {
    QString text;
    Look([&] { text = window.statusBar()->currentMessage(); });
    return text;
}

QString Stage::TextOf(const char* widget) const {
    QString text;
    auto* const found = Find<QWidget>(widget);
    Look([&] { text = found->property("text").toString(); });
    return text;
}

bool Stage::IsOnScreen() const {
    bool inside = false;
    Look([&] { inside = window.screen()->geometry().contains(window.frameGeometry()); });
    return inside;
}

bool Stage::IsEnabled(const char* widget) const {
    bool enabled = false;
    auto* const found = Find<QWidget>(widget);
    Look([&] { enabled = found->isEnabled(); });
    return enabled;
}

bool Stage::IsBusy() const {
    bool turns = false;
    Look([&] {
        const auto* const sign = window.findChild<WaitingSpinnerWidget*>();
        turns = sign != nullptr && sign->isVisible();
    });
    return turns;
}

std::vector<TrackPath> Stage::PathsOnCanvas() const {
    std::vector<TrackPath> paths;
    const auto* const canvas = Find<QMaskWidget>("label_mask");
    Look([&] { paths = canvas->paths(); });
    return paths;
}

QPoint Stage::PlaceOf(const QPointF& point) const {
    QPoint place;
    const auto* const canvas = Find<QMaskWidget>("label_mask");
    Look([&] {
        place =
            OnScreen(*canvas, {qRound(point.x() * canvas->width()), qRound(point.y() * canvas->height())});
    });
    return place;
}

QPoint Stage::OnCanvas(double across, double down) const {
    QPoint place;
    auto* const canvas = Find<QWidget>("label_mask");
    Look([&] {
        const QRect seen = canvas->visibleRegion().boundingRect();
        place = OnScreen(*canvas, {seen.left() + qRound(across * seen.width()),
                                   seen.top() + qRound(down * seen.height())});
    });
    return place;
}

QPoint Stage::OnScreen(const QWidget& widget, const QPoint& place) {
    const QPointF onDesktop = widget.mapToGlobal(place);
    return (onDesktop * widget.devicePixelRatioF()).toPoint();
}

QPoint Stage::CentreOf(const char* widget) const {
    QPoint place;
    auto* const found = Find<QWidget>(widget);
    Look([&] { place = OnScreen(*found, found->rect().center()); });
    return place;
}

template<typename Widget>
Widget* Stage::Find(const char* name) const {
    Widget* found = nullptr;
    Look([&] { found = window.findChild<Widget*>(QString::fromLatin1(name)); });
    Expect(found != nullptr, std::string("the window has ") + name);
    return found;
}
