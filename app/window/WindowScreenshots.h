#pragma once
// The window's own screenshots: the loops list, the side menu open over it,
// and the same in a desktop-sized window.
class QuilloWindow;
class ScreenshotRunner;

void addWindowScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
