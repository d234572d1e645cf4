#pragma once

#include <QString>

/// What the command line asks the program to do.
enum class StartMode {
    Window,        ///< work in the current folder
    DesktopWindow, ///< work in the user's own folder; no terminal shows errors
    Help,
    Version,
    Running, ///< report whether a copy of this user runs
    Display, ///< report where a window would be shown
};

/// The first of our own arguments decides. Qt takes its own ("-platform", "-style" …) from the others.
StartMode StartModeOf(int count, const char* const* arguments);

/// How the program is called, for --help.
QString UsageText();

/// Name and version, for --version.
QString VersionText();

/// Creates the folder "Corvane" in the user's home folder if it is missing, and makes it the working
/// directory.
/// @return why that is not possible, as a sentence for the operator; empty when the folder can be written
QString EnterOwnFolder();
