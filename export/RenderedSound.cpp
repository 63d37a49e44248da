#include "export/RenderedSound.h"

#include <filesystem>

#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/palette/Colorer.h"
#include "library/text/Utly.h"

std::string uniqueRenderedSoundName(const std::string& wanted) {
    return Utly::changeNameOf(
        "Sound", wanted,
        [](const std::string& name) {
            std::error_code ec;
            return std::filesystem::exists(Filer::pathToDocument(Filer::wavf(name)), ec);
        },
        200);
}

std::string moveRecordingToUniqueSoundFile(const std::string& wanted, std::string* soundName) {
    const std::string name = uniqueRenderedSoundName(wanted);
    const std::string to = Filer::pathToDocument(Filer::wavf(name));
    if (!Filer::renameFileFromPath(Filer::pathToTemporaryDocument(Filer::kTempRecordingName), to)) return {};
    if (soundName) *soundName = name;
    return to;
}

Sound* saveRecordingAsRenderedSound(const std::string& wanted) {
    std::string name;
    if (moveRecordingToUniqueSoundFile(wanted, &name).empty()) return nullptr;
    return CoreDater::shIns().createRecordedSound(name, static_cast<int16_t>(Colorer::randomColorNum()),
                                                  kRenderedLoopsFolder);
}
