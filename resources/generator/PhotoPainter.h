#pragma once
// The built-in sounds' photos: 320 x 320 pictures in the sound's palette
// colour with a pictogram of its kind of instrument, the note it plays and a
// pattern of circles that is different for every name. Needs a running
// QGuiApplication (for fonts).
#include <QImage>
#include <string>

#include "resources/generator/SoundTable.h"

namespace resgen {

constexpr int kPhotoSize = 320;

QImage paintSoundPhoto(const SoundSpec& sound);
// The photo of a sound without one: plain neutral grey, no pictogram.
QImage paintPlaceholderPhoto();
// Writes through a temporary file, so a reader never sees half a file.
bool saveJpeg(const QImage& image, const std::string& path, std::string& error);

}  // namespace resgen
