#pragma once

#include "link/OstraSdkClient.h"

#include <exception>
#include <string>
#include <vector>

class QThread;

/// Answers the calls of every OstraSdkClient of a test program instead of a server: FakeOstraSdkClient.cpp
/// is linked instead of the real client. One object at a time, used by one thread at a time.
class FakeServer {
  public:
    FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(FakeServer&& other) = default;
    ~FakeServer();

    /// Makes the `turn`-th call of the operation throw `failure`, once.
    template<typename Failure>
    void failAt(const std::string& operation, Failure failure, int turn = 1) {
        failing = operation;
        failingTurn = turn;
        thrown = std::make_exception_ptr(std::move(failure));
    }

    /// Records the call with its argument, and throws the prepared failure.
    void take(const std::string& operation, const std::string& argument = {});

    std::vector<std::string> calls;
    const QThread* thread = nullptr; ///< of the last call
    bool replayMode = false;
    bool replayModeAfterRestore = false;

  private:
    std::string failing;
    int failingTurn = 0;
    std::exception_ptr thrown;
};
