#pragma once
// Pictures of the library lists: tracks, sounds, a swiped loop row and the
// rename panel.
class ScreenshotRunner;
class QuilloWindow;

void addListScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
