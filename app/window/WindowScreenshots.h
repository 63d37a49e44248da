#pragma once
// The window's own screenshots: the loops list, and the side menu open over it.
class QuilloWindow;
class ScreenshotRunner;

void addWindowScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
