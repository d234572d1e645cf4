#include "tools/commandline/Progress.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;

/// Replaces standard error by a terminal while the object lives.
class Terminal {
  public:
    Terminal() : master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)), before(dup(STDERR_FILENO)) {
        grantpt(master);
        unlockpt(master);
        const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
        dup2(slave, STDERR_FILENO);
        close(slave);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() {
        dup2(before, STDERR_FILENO);
        close(before);
        close(master);
    }

    /// What was shown since the last call.
    std::string Shown() const {
        std::string text(4096, '\0');
        const ssize_t count = read(master, text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }

  private:
    int master;
    int before;
};

TEST(Progress, showsTheProgressOnATerminal) {
    const Terminal terminal;
    Progress progress("Reading a.osbak");
    progress.Update(1, 4); // too early to be shown
    EXPECT_EQ(terminal.Shown(), "");
    std::string shown;
    while ((shown = terminal.Shown()).empty())
        progress.Update(1, 4);
    EXPECT_EQ(shown, "\r\033[KReading a.osbak  25 %");
    while ((shown = terminal.Shown()).empty())
        progress.Update(9, 4);
    EXPECT_THAT(shown, EndsWith("  100 %"));
    progress.Clear();
    EXPECT_EQ(terminal.Shown(), "\r\033[K");
    progress.Clear(); // nothing is left to clear
    EXPECT_EQ(terminal.Shown(), "");
}

TEST(Progress, namesThePartAndRemovesItsLine) {
    const Terminal terminal;
    {
        Progress progress("Reading");
        std::string shown;
        while ((shown = terminal.Shown()).empty())
            progress.Begin("Packing");
        EXPECT_THAT(shown, HasSubstr("Packing"));
    }
    EXPECT_EQ(terminal.Shown(), "\r\033[K");
}

} // namespace
