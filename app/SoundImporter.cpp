#include "app/SoundImporter.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFileWriter.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"

namespace fs = std::filesystem;

namespace {

constexpr double kLowestRate = 1000.0;    // below this no file is a real sound
constexpr double kHighestRate = 768000.0;
constexpr const char* kTempPrefix = ".quillo-import-";

std::string systemReason(int error) { return error ? std::strerror(error) : std::string("unknown error"); }

// Flushes a file (or a folder's entry list) to disk; the system's error otherwise.
int syncPath(const std::string& path, bool directory) {
    int fd = ::open(path.c_str(), (directory ? O_RDONLY | O_DIRECTORY : O_RDWR) | O_CLOEXEC);
    if (fd < 0) return errno;
    int error = ::fsync(fd) == 0 ? 0 : errno;
    ::close(fd);
    return error;
}

// Moves `from` to `to` only if nothing is there (a leftover file is never
// replaced, and never bound to the new sound).
int renameNoReplace(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    // A file system without the flag: a hard link fails on an existing name too.
    if (::link(from.c_str(), to.c_str()) != 0) return errno;
    ::unlink(from.c_str());
    return 0;
}

// Temporary files of imports whose process died (killed half-way).
void removeStaleTemporaryFiles(const std::string& folder) {
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ec)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(kTempPrefix, 0) != 0) continue;
        const long pid = std::strtol(name.c_str() + std::strlen(kTempPrefix), nullptr, 10);
        if (pid <= 0 || pid == ::getpid() || ::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        std::error_code ignored;
        fs::remove(entry.path(), ignored);
    }
}

bool insideFolder(const std::string& path, const std::string& folder) {
    std::error_code ec1, ec2;
    fs::path parent = fs::weakly_canonical(fs::path(path).parent_path(), ec1);
    fs::path library = fs::weakly_canonical(folder, ec2);
    return !ec1 && !ec2 && parent == library;
}

// Decodes `source` completely into a 16-bit WAV in the engine's format at
// `target`, flushed to disk. Returns the frames written, or 0 with *error set.
uint64_t decodeToWav(const std::string& source, const std::string& target, std::string* error) {
    const AudioStreamDescription engine = AudioController::nonInterleaved16BitStereoAudioDescription();
    AudioFileWriter writer(engine);
    AudioError audioError;
    if (!writer.beginWritingToFileAtPath(target, kAudioFileWAVEType, 16, 2, &audioError)) {
        *error = "cannot write in the library: " + audioError.localizedDescription;
        return 0;
    }
    AudioFileLoaderOperation loader(source, engine);
    uint64_t written = 0;
    int writeErrno = 0;
    bool writeFailed = false;
    loader.audioReceiverBlock = [&](const AudioBufferList* audio, uint32_t frames) {
        if (writeFailed) return;
        errno = 0;
        if (AudioFileWriterAddAudioSynchronously(&writer, audio, frames) != 0) {
            writeFailed = true;
            writeErrno = errno;
            loader.cancel();
            return;
        }
        written += frames;
    };
    loader.start();
    writer.finishWriting();
    if (writeFailed) {
        *error = "cannot write the sound into the library: " + systemReason(writeErrno ? writeErrno : EIO);
        return 0;
    }
    if (loader.error()) {
        *error = "it cannot be decoded completely (" + loader.error()->localizedDescription + ")";
        return 0;
    }
    if (written == 0) {
        *error = "it holds no sound";
        return 0;
    }
    if (int e = syncPath(target, false)) {
        *error = "cannot write the sound into the library: " + systemReason(e);
        return 0;
    }
    // The header is written last, on closing: read the file back to be sure
    // it is whole (a full disk shows here when nowhere else).
    AudioStreamDescription format{};
    uint64_t frames = 0;
    if (!AudioFileLoaderOperation::infoForFileAtURL(target, &format, &frames, &audioError) || frames != written) {
        *error = "cannot write the sound into the library: " + systemReason(ENOSPC);
        return 0;
    }
    return written;
}

}  // namespace

ImportOutcome SoundImporter::importFile(const std::string& url) {
    ImportOutcome outcome;
    std::string path = Filer::pathFromUrl(url);
    if (path.empty()) {
        outcome.error = url + " is not a file";
        return outcome;
    }
    std::error_code ec;
    path = fs::absolute(path, ec).lexically_normal().string();
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        outcome.error = "cannot read " + path + ": " + systemReason(errno);
        return outcome;
    }
    if (!S_ISREG(st.st_mode)) {
        outcome.error = path + " is not a regular file (a pipe or a device); save it as a file first";
        return outcome;
    }

    // A file that does not open as audio, or whose numbers make no sense, is
    // refused before anything is written.
    AudioStreamDescription format{};
    uint64_t frames = 0;
    AudioError error;
    if (!AudioFileLoaderOperation::infoForFileAtURL(path, &format, &frames, &error)) {
        outcome.error = path + " is not a sound file Quillo can play (" + error.localizedDescription + ")";
        return outcome;
    }
    if (format.mSampleRate < kLowestRate || format.mSampleRate > kHighestRate) {
        char rate[64];
        std::snprintf(rate, sizeof rate, "%.0f", format.mSampleRate);
        outcome.error = path + " is not a sound file Quillo can play (its sample rate of " + rate +
                        " Hz is outside 1000 to 768000 Hz)";
        return outcome;
    }
    if (double(frames) / format.mSampleRate > kMaxSeconds) {
        outcome.error = path + " is not a sound file Quillo can play (it is longer than an hour)";
        return outcome;
    }

    const std::string folder = Filer::documentsDirectory();
    removeStaleTemporaryFiles(folder);
    const std::string temporary = folder + "/" + kTempPrefix + std::to_string(::getpid()) + ".wav";
    ::unlink(temporary.c_str());
    std::string why;
    if (decodeToWav(path, temporary, &why) == 0) {
        ::unlink(temporary.c_str());
        outcome.error = path + " was not imported: " + why;
        return outcome;
    }

    // A name free in the store and on disk, short enough for the file system.
    long nameMax = ::pathconf(folder.c_str(), _PC_NAME_MAX);
    if (nameMax <= 0) nameMax = 255;
    const size_t maxStem = static_cast<size_t>(nameMax) - 4;  // room for ".wav" (and ".jpg")
    auto onDisk = [](const std::string& name) {
        std::error_code e;
        return fs::exists(fs::symlink_status(Filer::pathForWavSound(name), e)) ||
               fs::exists(fs::symlink_status(Filer::pathToDocument(Filer::jpgf(name)), e));
    };
    const std::string wanted = QFileInfo(QString::fromStdString(path)).completeBaseName().toStdString();
    std::string name;
    int renameError = EEXIST;
    for (int attempt = 0; attempt < 100 && renameError == EEXIST; ++attempt) {
        name = Utly::changeNameOf("Sound", wanted, onDisk, maxStem);
        renameError = renameNoReplace(temporary, Filer::pathForWavSound(name));
    }
    if (renameError) {
        ::unlink(temporary.c_str());
        outcome.error = path + " was not imported: cannot name its file in the library: " + systemReason(renameError);
        return outcome;
    }
    const std::string wav = Filer::pathForWavSound(name);
    syncPath(folder, true);

    // The sound and its folder, saved together or not at all.
    CoreDater& dater = CoreDater::shIns();
    const std::string folderName = localized("Imported");
    const bool folderExisted = dater.findEntity("SoundFolder", folderName) != nullptr;
    dater.beginBatch();
    Sound* sound = dater.createRecordedSound(name, static_cast<int16_t>(Colorer::randomColorNum()), folderName);
    std::string saveError;
    if (!dater.endBatch(&saveError)) {
        SoundFolder* created = folderExisted ? nullptr : sound->inFolder();
        dater.deleteObject(sound);
        if (created) dater.deleteObject(created);
        ::unlink(wav.c_str());
        outcome.error = path + " was not imported: the library could not be saved: " + saveError;
        return outcome;
    }
    outcome.sound = sound;

    if (!insideFolder(path, folder) && !Filer::deleteFileFromUrl(path)) {
        outcome.warning = "imported " + path + ", but could not remove it: " + systemReason(errno);
    }
    return outcome;
}
