#pragma once
// Where the window's log lines go: the log file $XDG_STATE_HOME/Quillo/quillo.log
// (usually ~/.local/state/Quillo), and standard error as well with --verbose.
#include <string>

void routeLogToFile(bool alsoToStandardError);
std::string logFilePath();
