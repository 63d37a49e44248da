#pragma once
// Where a captured loop or track goes when it becomes a file of the library:
// the scratch recording moved to the WAV path of a sound name that no sound
// and no file in the library folder has yet, made from the item's name.
#include <string>

class Sound;

// The unique sound name for `wanted` ("Beat", "Beat 2", ...).
std::string uniqueRenderedSoundName(const std::string& wanted);
// Moves the scratch recording there; its path, or empty when the move failed.
std::string moveRecordingToUniqueSoundFile(const std::string& wanted, std::string* soundName = nullptr);
// The same, then a sound of that name with a random colour in "Rendered
// loops". None when the move failed (the library is then unchanged).
Sound* saveRecordingAsRenderedSound(const std::string& wanted);

inline constexpr const char* kRenderedLoopsFolder = "Rendered loops";
