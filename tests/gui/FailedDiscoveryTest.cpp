#include "SourceWorkflows.h"

#include <cerrno>
#include <optional>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

bool socketsFail = false;

/// While it lives, no socket can be made.
class NoSockets {
  public:
    NoSockets() { socketsFail = true; }
    NoSockets(const NoSockets&) = delete;
    NoSockets& operator=(const NoSockets&) = delete;
    ~NoSockets() { socketsFail = false; }
};

TEST_F(SourceWorkflows, failedDiscoveryIsReportedAndLeavesAnEmptyList) {
    auto none = std::make_optional<NoSockets>();
    answers.note = [&none] {
        none.reset();
        return QString();
    };
    openWindow();
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_EQ(boxes[0].title, QStringLiteral("Error"));
    EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr("ERROR_CONNECTION - "));
    const std::vector<std::string> lines = log.Lines();
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0], "INFO: Starting Corvane.");
    EXPECT_THAT(lines[1], HasSubstr("ERROR: (ERROR_CONNECTION) "));
    EXPECT_THAT(items("comboBox_sensor"), IsEmpty());
    EXPECT_FALSE(enabled("pushButton_sensor"));
    EXPECT_THAT(items("comboBox_file"), ElementsAre("External"));
}

TEST_F(SourceWorkflows, failedResetDisablesTheButtonUntilOneSucceeds) {
    openWindowAndListen();
    auto none = std::make_optional<NoSockets>();
    answers.note = [this, &none] {
        none.reset();
        return enabled("pushButton_sensor") ? QStringLiteral("enabled") : QStringLiteral("disabled");
    };
    click("toolButton_reset");
    const std::vector<SeenBox> boxes = answers.takeBoxes();
    ASSERT_THAT(boxes, SizeIs(1));
    EXPECT_THAT(boxes[0].text.toStdString(), HasSubstr("ERROR_CONNECTION - "));
    EXPECT_EQ(boxes[0].underneath, QStringLiteral("disabled"));
    EXPECT_FALSE(enabled("pushButton_sensor"));
    EXPECT_EQ(status(), "");
    click("toolButton_reset");
    EXPECT_EQ(status(), "Reset successfully.");
    EXPECT_TRUE(enabled("pushButton_sensor"));
    EXPECT_EQ(text("pushButton_sensor"), "Load Backup");
}

} // namespace

// Replaces the system library's function in this program.
extern "C" int socket(int domain, int type, int protocol) noexcept {
    if (socketsFail) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_socket, domain, type, protocol));
}
