#include "start/StartOptions.h"

#include <QDir>
#include <QTemporaryFile>

#include <array>
#include <string_view>

namespace {

struct Option {
    std::string_view name;
    StartMode mode;
};

constexpr std::array kOptions{
    Option{"--desktop", StartMode::DesktopWindow},
    Option{"--running", StartMode::Running},
    Option{"--help", StartMode::Help},
    Option{"-h", StartMode::Help},
    Option{"--version", StartMode::Version},
    Option{"--display", StartMode::Display},
};

/// Only writing detects a full disk or a read-only file system.
bool CanWriteInto(const QDir& folder) {
    QTemporaryFile file(folder.filePath(QStringLiteral(".corvane-XXXXXX")));
    return file.open() && file.write("x") == 1 && file.flush();
}

} // namespace

StartMode StartModeOf(int count, const char* const* arguments) {
    for (int i = 1; i < count; ++i) {
        for (const Option& option : kOptions) {
            if (arguments[i] == option.name)
                return option.mode;
        }
    }
    return StartMode::Window;
}

QString UsageText() {
    return QStringLiteral(
        "Usage: corvane [--desktop]\n\n"
        "Opens the editor for track files in the current folder, where it keeps its log and\n"
        "its working files. A second copy of the same user ends at once.\n\n"
        "Options:\n"
        "  --desktop   work in ~/Corvane, made when it is missing, and show in a box what\n"
        "              keeps the editor from opening\n"
        "  --running   say whether a copy runs; ends with 0 when one does, else with 1\n"
        "  -h, --help  show this help\n"
        "  --version   show the version\n\n"
        "Qt's own options, such as -platform and -style, are understood too.\n");
}

QString VersionText() {
    return QStringLiteral("corvane " CORVANE_VERSION "\n");
}

QString EnterOwnFolder() {
    const QDir folder(QDir::home().filePath(QStringLiteral("Corvane")));
    const QString name = QDir::toNativeSeparators(folder.path());
    if (!folder.mkpath(QStringLiteral(".")))
        return QStringLiteral("The folder %1 cannot be made.").arg(name);
    if (!CanWriteInto(folder))
        return QStringLiteral("The folder %1 cannot be written to.").arg(name);
    if (!QDir::setCurrent(folder.path()))
        return QStringLiteral("The folder %1 cannot be entered.").arg(name);
    return {};
}
