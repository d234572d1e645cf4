#pragma once

#include <QString>

/// What the command line asks the program to do.
enum class StartMode {
    Window,        ///< work in the current folder
    DesktopWindow, ///< work in the user's own folder; no terminal shows what goes wrong
    Help,
    Version,
    Running, ///< say whether a copy of this user runs
    Display, ///< say where a window would be shown
};

/// The first argument that is one of ours decides. Qt takes its own ("-platform", "-style" …) from the
/// others.
StartMode StartModeOf(int count, const char* const* arguments);

/// How the program is called, for --help.
QString UsageText();

/// Name and version, for --version.
QString VersionText();

/// Makes the folder "Corvane" in the user's home folder where it is missing, and works in it from here on.
/// @return why that is not possible, as a sentence for the operator; empty when the folder can be written
QString EnterOwnFolder();
