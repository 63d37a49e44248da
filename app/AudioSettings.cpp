#include "app/AudioSettings.h"

#include <QSettings>

namespace audiosettings {

QString deviceLabel(const std::string& device) {
    return device.empty() ? QString(kDefaultDevice) : QString::fromStdString(device);
}

std::string deviceName(const QString& label) {
    return label.isEmpty() || label == kDefaultDevice ? std::string() : label.toStdString();
}

AudioDeviceChoice load(const QSettings& settings) {
    AudioDeviceChoice choice;
    choice.outputDevice = deviceName(settings.value("audio/outputDevice", kDefaultDevice).toString());
    choice.inputDevice = deviceName(settings.value("audio/inputDevice", kDefaultDevice).toString());
    bool ok = false;
    const int frames = settings.value("audio/bufferFrames", 256).toInt(&ok);
    if (ok && frames > 0) choice.framesPerBuffer = uint32_t(frames);
    return choice;
}

void save(QSettings& settings, const AudioDeviceChoice& choice) {
    settings.setValue("audio/outputDevice", deviceLabel(choice.outputDevice));
    settings.setValue("audio/inputDevice", deviceLabel(choice.inputDevice));
    settings.setValue("audio/bufferFrames", int(choice.framesPerBuffer));
}

}  // namespace audiosettings
