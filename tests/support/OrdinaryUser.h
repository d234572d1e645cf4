#pragma once

#include <unistd.h>

/// Makes the process an ordinary user while the object lives, so that permissions apply when the tests run as
/// root too.
class OrdinaryUser {
  public:
    /// @param folder is given to that user
    explicit OrdinaryUser(const char* folder) : before(geteuid()) {
        constexpr uid_t kNobody = 65534;
        ready = before != 0 || (chown(folder, kNobody, kNobody) == 0 && seteuid(kNobody) == 0);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() {
        if (geteuid() != before && seteuid(before) != 0)
            _exit(1);
    }
    [[nodiscard]] bool IsReady() const { return ready; }

  private:
    uid_t before;
    bool ready = false;
};
