#pragma once
// The loop editor's main states for `make screenshots`.
class QuilloWindow;
class ScreenshotRunner;

void addLoopEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
