#pragma once
// The track editor's screenshots: a built-in track opened from the stack with
// its rows shown and hidden, a row open, rows being deleted, and the number
// of squares enlarged.
class QuilloWindow;
class ScreenshotRunner;

void addTrackEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
