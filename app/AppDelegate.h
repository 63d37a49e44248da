#pragma once
// The one long-lived owner of Quillo's process-wide state: settings, the
// library store, the audio engine, the live players and the shared cache of
// loaded sounds. Screens reach it through AppDelegate::shared(). It holds no
// window code: the window (or the command-line tool) sits on top of it.
// Main thread only.
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/SoundImporter.h"
#include "engine/AudioController.h"
#include "library/content/OpenedLibrary.h"
#include "playback/PlaybackContext.h"

class AudioFilePlayer;
class OscilloscopeLayer;
class Recorder;
class Sound;
class LibraryStore;
class QSettings;

struct AppDelegateOptions {
    std::string libraryFolder;  // the documents folder; empty: the default library folder
    std::string settingsFile;   // an INI file for the settings; empty: the user's Quillo settings
    AudioDriverKind driver = AudioDriverKind::Automatic;
    MainThread* mainThread = nullptr;
    // Write: this process holds the library's writer lock while it runs (the
    // window, import). Read: it only reads the store, alongside a writer or on
    // read-only media (render, play).
    LibraryAccess access = LibraryAccess::Write;
};

class AppDelegate {
public:
    explicit AppDelegate(AppDelegateOptions options);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // The application's delegate, while one exists.
    static AppDelegate* shared();

    // Launch: settings, translations, the library (with the built-in content
    // when the store holds no sound), engine, player lists, then the import of
    // a handed-over file if any. False when the library cannot be opened
    // (libraryError() says why); nothing has changed then.
    bool didFinishLaunching(const std::string& handedOverFile = {});
    const LibraryOpenError& libraryError() const { return libraryError_; }
    void loadState();
    void saveState();
    void addAudioControlla();
    // Reopens the audio device when the settings chose other devices or
    // another buffer size; what plays goes on playing.
    void applyAudioSettings();
    bool baseIsEmpty();

    // Opened on first use; a library that cannot be opened ends the process
    // after printing why.
    LibraryStore* managedObjectContext();
    const std::string& applicationDocumentsDirectory() const { return documents_; }

    // Silences everything, in a fixed order (players, cache, input trace,
    // recorder, channels, receivers).
    void removeAllChannelsFromAC();
    void removeOnesht();

    // Recording into the scratch file "tempRecording.wav" (16-bit WAVE, two
    // channels when recordToStereo is on, else one). `input` records the
    // microphone, `output` what the engine plays; both are mixed.
    // Starts at once; when the file cannot be opened, logs why and attaches nothing.
    void beginRecordingInput(bool input, bool output);
    // Attaches the recorder and, unless justPrepare, starts it, in one
    // exchange with the render thread. With justPrepare the caller starts it
    // later with RecorderStartRecording (the export screen does, just before
    // playback).
    void beginRecordingInput(bool input, bool output, bool justPrepare);
    void endRecording();
    // Detach the recorder (then finish its file) or the input trace, and drop
    // it. Both do nothing when there is none.
    void removeRecrder();
    void removeOsciloscp();
    // Turns the microphone on or off: the engine is rebuilt with the same
    // format, output on and no voice processing. May run on a background thread.
    bool setACInputEnabled(bool enabled);
    std::shared_ptr<Recorder> recorder;
    std::shared_ptr<OscilloscopeLayer> inputOscilloscope;

    // A file handed over by another program: imported as a new sound in "Imported".
    bool openURL(const std::string& url);
    // Returns the new sound, or none when the file was refused or the import
    // failed (lastImport() says why; nothing has changed then).
    Sound* handleOpenURL(const std::string& url);
    const ImportOutcome& lastImport() const { return lastImport_; }
    // The same for a file handed over through the window's HandoffChannel:
    // imports it and gives the channel's answer line ("ok\tNAME" or
    // "error\tMESSAGE").
    std::string importHandedOverFile(const std::string& path);
    void reloadSoundsList();
    std::function<void()> soundsListReloader;  // set by the sounds list while it is on top

    // Settings.
    QSettings* settings() const { return settings_.get(); }  // the store behind them (the mail account too)
    std::string usersArtistName;
    bool autotrimRecords = true;
    bool recordToStereo = false;
    bool notFirstTime = false;

    AudioController* audioController() const { return controller_.get(); }
    PlaybackContext& playback() { return playback_; }
    std::vector<std::shared_ptr<Loopplayer>>& loopplayers() { return playback_.loopplayers; }
    std::vector<std::shared_ptr<Trackplayer>>& trackplayers() { return playback_.trackplayers; }
    std::map<std::string, std::shared_ptr<AudioFileLoaderOperation>>& loadedFiles() { return playback_.loadedFiles; }
    std::shared_ptr<AudioFilePlayer> oneshot;  // a sound played once (preview)

private:
    AppDelegateOptions options_;
    std::string documents_;
    std::unique_ptr<QSettings> settings_;
    bool openLibrary();
    std::unique_ptr<OpenedLibrary> library_;
    LibraryOpenError libraryError_;
    ImportOutcome lastImport_;
    std::unique_ptr<AudioController> controller_;
    PlaybackContext playback_;
};
