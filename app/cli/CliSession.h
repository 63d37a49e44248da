#pragma once
// A launched Quillo for one command: the application object on the chosen
// library folder and audio driver, with the command-line thread as its main thread.
#include <memory>
#include <string>

#include "app/AppDelegate.h"
#include "app/cli/CliOptions.h"
#include "engine/MainThread.h"

class Loop;
class OpenedLibrary;
class Sound;
class Track;

struct CliSession {
    // Launches on the library; when it cannot be opened, prints why and ends
    // the process with the library's exit status (nothing has changed then).
    CliSession(const CliContext& context, AudioDriverKind driver, LibraryAccess access);
    ~CliSession();

    // Finds an item by name; prints a message with close matches when there is none.
    Loop* loopNamed(const std::string& name);
    Track* trackNamed(const std::string& name);
    Sound* soundNamed(const std::string& name);

    RunLoopMainThread mainThread;
    std::unique_ptr<AppDelegate> app;
};

// The library opened for reading only (list, print-loops); prints why and
// ends the process when it cannot be opened.
std::unique_ptr<OpenedLibrary> openLibraryForReading(const CliContext& context);

// A one-line progress bar on a terminal; nothing otherwise.
class ProgressLine {
public:
    ProgressLine();
    void update(double fraction);
    void finish();

private:
    bool terminal_;
    int shown_ = -1;
};
