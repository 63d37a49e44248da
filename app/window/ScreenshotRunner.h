#pragma once
// Saves pictures of screens in given states as PNG files, one after another:
// each shot puts a window into its state, the runner lets the animations
// settle, grabs that window and writes DIR/NAME.png. Any part of the program
// can add its shots (the window adds its own in WindowScreenshots).
#include <QString>
#include <functional>
#include <vector>

class QQuickWindow;

struct Screenshot {
    QString name;                              // the file's name, without ".png"
    std::function<QQuickWindow*()> prepare;    // puts the screen in its state; returns the window to grab
    int settleMs = 600;                        // time for the state's animations to finish
};

class ScreenshotRunner {
public:
    void add(Screenshot shot) { shots_.push_back(std::move(shot)); }
    // Runs every shot in order (needs a running-capable QGuiApplication).
    // Returns false, after writing the others, if any could not be grabbed or saved.
    bool run(const QString& folder);

private:
    std::vector<Screenshot> shots_;
};
