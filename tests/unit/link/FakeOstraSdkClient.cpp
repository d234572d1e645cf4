#include "FakeOstraSdkClient.h"

#include <QThread>

namespace {
FakeServer* current = nullptr;
}

FakeServer::FakeServer() {
    if (current == nullptr)
        current = this;
}

FakeServer::~FakeServer() {
    if (current == this)
        current = nullptr;
}

void FakeServer::take(const std::string& operation, const std::string& argument) {
    thread = QThread::currentThread();
    calls.push_back(argument.empty() ? operation : operation + " " + argument);
    if (thrown == nullptr || operation != failing || --failingTurn > 0)
        return;
    std::rethrow_exception(std::exchange(thrown, nullptr));
}

OstraSdkClient::OstraSdkClient() = default;
OstraSdkClient::~OstraSdkClient() = default;

void OstraSdkClient::Backup(const std::string& backupFileName) {
    current->take("Backup", backupFileName);
}

void OstraSdkClient::Restore(const std::string& fileName) {
    current->take("Restore", fileName);
    current->replayMode = current->replayModeAfterRestore;
}

bool OstraSdkClient::GetReplayMode() {
    current->take("GetReplayMode");
    return current->replayMode;
}

void OstraSdkClient::SetReplayMode(bool enabled) {
    current->take("SetReplayMode", enabled ? "true" : "false");
    current->replayMode = enabled;
}
