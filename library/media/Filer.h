#pragma once
// Where a sound's files live, how their names are formed, the temporary files,
// and moving, copying and deleting files.
//
// Every sound owns up to two files named after it: its audio ("NAME.wav") and
// its photo ("NAME.jpg"). Built-in sounds take theirs from the program's
// read-only resources; user sounds keep theirs in the library folder (the
// "documents" directory). File locations are plain paths; the functions named
// url... return the same kind of path as the path... ones.
//
// Plain C++: no Qt type appears here, so the players can include it. The
// decoded-photo cache that the shared instance owns is in ImageCache.h.
// Main thread only.
#include <memory>
#include <string>

class Sound;
class ImageCache;
class AudioController;
class AudioFileLoaderOperation;
struct AudioBufferList;

class Filer {
public:
    // The one instance; it owns the photo cache.
    static Filer& shIns();
    ImageCache& imageCache();

    // Locations. The library folder is set by the program once it knows it;
    // until then it is $QUILLO_LIBRARY, else $XDG_DATA_HOME/Quillo.
    static std::string defaultDocumentsDirectory();
    static void setDocumentsDirectory(const std::string& path);
    static std::string documentsDirectory();
    // Built-in sounds and photos: <folder of the program>/../share/quillo/sounds,
    // which holds in the build tree and in an installed copy alike.
    static void setResourceDirectory(const std::string& path);
    static std::string resourceDirectory();
    // A folder of this process under the system's temporary location
    // (quillo-UID/PID), created when first asked for and removed when the
    // process ends; folders left by processes that died are removed then too.
    // So two programs never share a scratch file.
    static void setTemporaryDirectory(const std::string& path);
    static std::string temporaryDirectory();

    // The scratch files, all in the temporary folder.
    static constexpr const char* kTempRecordingName = "tempRecording.wav";
    static constexpr const char* kTempPhotoName = "tempPhoto.jpg";  // the sound editor's new photo
    static constexpr const char* kTempGlvidName = "tempGlvid.mov";
    static constexpr const char* kTempAudvidName = "tempaudvid.mov";
    // The resource NAME.TYPE (whether or not it exists).
    static std::string pathForResource(const std::string& name, const std::string& type);

    // The WAV of a sound: the resource for a built-in sound, the documents file
    // for a user sound; with no sound, the built-in "Kick".
    static std::string urlForSound(const Sound* sound);
    static std::string pathForSound(const Sound* sound);
    static std::string pathForWavSound(const std::string& name);
    static std::string urlForUsersSoundWithName(const std::string& name);

    // The two file-name forms, deliberately different: a WAV name gets "wav"
    // added as a path extension (trailing slashes dropped first), a photo name
    // is the text followed by ".jpg". Both keep any dot already in the name.
    static std::string wavf(const std::string& name);
    static std::string jpgf(const std::string& name);

    static std::string pathToDocument(const std::string& fileName);
    static std::string pathToTemporaryDocument(const std::string& fileName);

    // A sound's photo: the resource for a built-in sound, the documents file
    // for a user sound.
    static std::string pathToJpgFileForSound(const Sound* sound);
    static bool jpgFileExistsForSound(const Sound* sound);

    // Moving, copying and deleting. Failures are logged as "Error: ..." and
    // reported as false; nothing throws.
    // A rename replaces whatever is at the destination.
    static bool renameFile(const std::string& fromName, const std::string& toName);  // in documents
    static bool renameFileFromPath(const std::string& fromPath, const std::string& toPath);
    // Deleting a path where nothing exists succeeds at once.
    static bool deleteFile(const std::string& name);  // in documents
    static bool deleteFileAtPath(const std::string& path);
    // A "file://" URL or a plain path.
    static bool deleteFileFromUrl(const std::string& url);
    // The local path of a "file://" URL (percent escapes decoded); a plain
    // path is returned as it is. Empty for other URLs.
    static std::string pathFromUrl(const std::string& url);
    // A copy never replaces: an existing destination makes it fail.
    static bool copyFile(const std::string& fromUrl, const std::string& toUrl);
    // Removes the recording and movie scratch files (not the scratch photo).
    static void removeTempRecordingsFile();

    // Audio in memory. Loading decodes the whole file on the calling thread
    // into the engine's format; a failure logs "load error: ..." and gives none.
    static std::shared_ptr<AudioFileLoaderOperation> operationWithFileURL(const std::string& url);
    // Frees the samples of both channels and then the list. Only after the
    // channels that read them have left the engine.
    static void freeBufList(AudioBufferList* list);
    // The engine whose format loaded sounds take (none: an all-zero format).
    static void setAudioController(AudioController* controller);

    ~Filer();

private:
    Filer();
    Filer(const Filer&) = delete;
    Filer& operator=(const Filer&) = delete;

    std::unique_ptr<ImageCache> imageCache_;
};
