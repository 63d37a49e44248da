#pragma once
// Pictures of the sound screen in its main states for `make screenshots`:
// a new sound, recording with the input trace, recorded with its waveform,
// the settings page, the colour chooser, the photo chooser, and an existing sound.
class QuilloWindow;
class ScreenshotRunner;

void addSoundEditorScreenshots(ScreenshotRunner& runner, QuilloWindow& window);
