#include "Watchdog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kDialogPollInterval = 500; // milliseconds
constexpr int kDialogShare = 4;          ///< a dialog gets this part of a step's time-out

} // namespace

Watchdog::Watchdog(std::chrono::seconds patienceOfStep) : timeOut(patienceOfStep) {
    QObject::connect(&dialogTimer, &QTimer::timeout, [this] { LookForOldDialog(); });
    dialogTimer.start(kDialogPollInterval);
    watching = std::thread([this] { Watch(); });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    changed.notify_all();
    watching.join();
}

void Watchdog::BeginStep(const std::string& description) {
    const std::lock_guard lock(mutex);
    step = description;
    begun = Clock::now();
    running = true;
    changed.notify_all();
}

void Watchdog::EndStep() {
    const std::lock_guard lock(mutex);
    running = false;
    longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begun));
}

void Watchdog::Watch() {
    std::unique_lock lock(mutex);
    while (!ending) {
        if (running && Clock::now() - begun > timeOut) {
            std::fprintf(stderr, "watchdog: the window is stuck in %s\n", step.c_str());
            std::abort();
        }
        changed.wait_for(lock, std::chrono::seconds(1));
    }
}

void Watchdog::LookForOldDialog() {
    auto* const modal = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (modal != dialog) {
        dialog = modal;
        dialogSince = Clock::now();
    }
    if (modal == nullptr || Clock::now() - dialogSince < timeOut / kDialogShare)
        return;
    ADD_FAILURE() << "nobody answers the dialog \"" << modal->windowTitle().toStdString() << '"';
    modal->reject();
}
