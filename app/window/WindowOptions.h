#pragma once
// The window's command line: quillo [--library DIR] [--verbose] [--screenshot DIR] [FILE...]
#include <QString>
#include <QStringList>

struct WindowOptions {
    QString libraryFolder;   // empty: $QUILLO_LIBRARY, else the default library folder
    QString settingsFile;    // empty: the user's Quillo settings (tests pass an INI file)
    bool verbose = false;    // log lines on standard error as well as in the log file
    QString screenshotDir;   // non-empty: grab the window's screens into this folder and quit
    QStringList files;       // handed over: imported as sounds once the window is up
};

enum class WindowArguments { Run, Help, Error };

// Parses the arguments after the program name (Qt's own options already
// removed). On Error, `message` says what is wrong in one line.
WindowArguments parseWindowArguments(const QStringList& arguments, WindowOptions* options, QString* message);
QString windowUsage();
