#pragma once
// The audio devices and buffer size kept in the settings ("audio/outputDevice",
// "audio/inputDevice", "audio/bufferFrames"), as the engine takes them. The
// settings name the system's default device "Default"; the engine, nothing.
#include <QString>

#include "engine/AudioDevices.h"

class QSettings;

namespace audiosettings {

inline constexpr const char* kDefaultDevice = "Default";

AudioDeviceChoice load(const QSettings& settings);
void save(QSettings& settings, const AudioDeviceChoice& choice);
QString deviceLabel(const std::string& device);   // "" -> "Default"
std::string deviceName(const QString& label);     // "Default" -> ""

}  // namespace audiosettings
