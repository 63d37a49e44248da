#include "app/AppDelegate.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <cstdio>
#include <cstdlib>

#include "app/AudioSettings.h"
#include "app/LibraryLocation.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFilePlayer.h"
#include "library/CoreDater.h"
#include "library/content/OpenedLibrary.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/store/LibraryStore.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"
#include "playback/Loopplayer.h"
#include "playback/Trackplayer.h"
#include "recording/Autotrimmer.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"

namespace {
AppDelegate* sharedDelegate = nullptr;
}  // namespace

AppDelegate::AppDelegate(AppDelegateOptions options) : options_(std::move(options)) {
    documents_ = options_.libraryFolder.empty() ? defaultLibraryFolder() : options_.libraryFolder;
    QDir().mkpath(QString::fromStdString(documents_));
    Filer::setDocumentsDirectory(documents_);
    settings_ = options_.settingsFile.empty()
                    ? std::make_unique<QSettings>("Quillo", "Quillo")
                    : std::make_unique<QSettings>(QString::fromStdString(options_.settingsFile), QSettings::IniFormat);
    sharedDelegate = this;
    PlaybackContext::setShared(&playback_);
    CoreDater::shIns().setUserArtistNameSource([this] { return usersArtistName; });
    Autotrimmer::setRecordToStereoSource([this] { return recordToStereo; });
}

AppDelegate::~AppDelegate() {
    removeAllChannelsFromAC();
    removeOnesht();
    if (controller_) controller_->stop();
    CoreDater::shIns().setManagedObjectContext(nullptr);
    CoreDater::shIns().setUserArtistNameSource(nullptr);
    Autotrimmer::setRecordToStereoSource(nullptr);
    PlaybackContext::setShared(nullptr);
    if (sharedDelegate == this) sharedDelegate = nullptr;
}

AppDelegate* AppDelegate::shared() { return sharedDelegate; }

bool AppDelegate::didFinishLaunching(const std::string& handedOverFile) {
    loadState();
    installTranslations(Filer::resourceDirectory() + "/../translations");
    // Opening the library adds the built-in content whenever the store holds
    // no sound at all (the one such check of a launch).
    if (!openLibrary()) return false;
    addAudioControlla();
    playback_.loopplayers.clear();
    playback_.trackplayers.clear();
    playback_.loadedFiles.clear();
    if (!handedOverFile.empty()) handleOpenURL(handedOverFile);
    return true;
}

void AppDelegate::loadState() {
    QVariant artist = settings_->value("usersArtistName");
    usersArtistName = artist.isValid() ? artist.toString().toStdString() : std::string();
    autotrimRecords = settings_->value("autotrimRecords", false).toBool();
    recordToStereo = settings_->value("recordToStereo", false).toBool();
    if (!artist.isValid()) {
        usersArtistName = localized("You");
        saveState();
    }
    // "notFirstTime" is written but never read back, so every launch starts
    // with trimming on and stereo off: the sound editor's switches last one run.
    if (!notFirstTime) {
        notFirstTime = true;
        recordToStereo = false;
        autotrimRecords = true;
        saveState();
    }
}

void AppDelegate::saveState() {
    settings_->setValue("usersArtistName", QString::fromStdString(usersArtistName));
    settings_->setValue("autotrimRecords", autotrimRecords);
    settings_->setValue("notFirstTime", notFirstTime);
    settings_->setValue("recordToStereo", recordToStereo);
    settings_->sync();
}

void AppDelegate::addAudioControlla() {
    AudioControllerOptions options;
    options.driver = options_.driver;
    options.mainThread = options_.mainThread;
    if (settings_) options.devices = audiosettings::load(*settings_);
    controller_ = std::make_unique<AudioController>(AudioController::nonInterleaved16BitStereoAudioDescription(),
                                                    false, options);
    playback_.audioController = controller_.get();
    Filer::setAudioController(controller_.get());
    AudioError error;
    if (!controller_->start(&error)) qlog("%s", error.localizedDescription.c_str());
}

void AppDelegate::applyAudioSettings() {
    if (!controller_ || !settings_) return;
    const AudioDeviceChoice choice = audiosettings::load(*settings_);
    if (choice == controller_->devices()) return;
    controller_->switchDevices(choice);
}

bool AppDelegate::baseIsEmpty() {
    managedObjectContext();
    return OpenedLibrary::storeHoldsNoSound();
}

bool AppDelegate::openLibrary() {
    if (library_) return true;
    library_ = OpenedLibrary::open(documents_, options_.access, &libraryError_);
    return library_ != nullptr;
}

LibraryStore* AppDelegate::managedObjectContext() {
    if (!openLibrary()) {
        std::fprintf(stderr, "quillo: %s\n", libraryError_.message.c_str());
        std::exit(libraryError_.exitCode);
    }
    return &library_->store();
}

void AppDelegate::removeAllChannelsFromAC() {
    // Pause every player first: the teardown below frees shared sounds while
    // later players in the list are still in the engine, and a paused render
    // block reads nothing.
    // The lists are taken first: a report handled while a stop waits for the
    // render thread may stop players (and change the lists) itself.
    const auto loopplayers = std::move(playback_.loopplayers);
    playback_.loopplayers.clear();
    const auto trackplayers = std::move(playback_.trackplayers);
    playback_.trackplayers.clear();
    for (auto& p : loopplayers) p->setPausd(true);
    for (auto& p : loopplayers) {
        p->stopLoopplayer();
        p->reallyFreeLoadedFiles();
    }
    for (auto& t : trackplayers) t->stopTrackplayer();
    if (!playback_.loadedFiles.empty()) {
        for (auto& entry : playback_.loadedFiles) Filer::freeBufList(entry.second->bufferList());
        playback_.loadedFiles.clear();
    }
    playback_.freeRetiredFiles();
    removeOsciloscp();
    removeRecrder();
    if (!controller_) return;
    auto channels = controller_->channels();
    if (!channels.empty()) controller_->removeChannels(channels);
    for (auto& r : controller_->inputReceivers()) controller_->removeInputReceiver(r);
    for (auto& r : controller_->outputReceivers()) controller_->removeOutputReceiver(r);
}

void AppDelegate::removeOnesht() {
    // Taken first: its finish report may arrive while the removal waits, and
    // a handler may call this again.
    const std::shared_ptr<AudioFilePlayer> player = std::move(oneshot);
    oneshot.reset();
    if (player && controller_) controller_->removeChannels({player});
}

// ---------------------------------------------------------------------------
// Recording

void AppDelegate::beginRecordingInput(bool input, bool output) {
    if (!controller_) return;
    removeRecrder();  // never two recorders on the one scratch file
    recorder = std::make_shared<Recorder>(controller_.get());
    recorder->expectSources(input, output);
    AudioError error;
    if (!recorder->beginRecordingToFileAtPath(Filer::pathToTemporaryDocument(Recorder::kScratchFileName),
                                              kAudioFileWAVEType, 16, recordToStereo ? 2 : 1, &error)) {
        qlog("%s", error.localizedDescription.c_str());
        return;
    }
    controller_->addReceiversWithBlock(input ? recorder : nullptr, output ? recorder : nullptr, nullptr);
}

void AppDelegate::beginRecordingInput(bool input, bool output, bool justPrepare) {
    if (!controller_) return;
    removeRecrder();
    recorder = std::make_shared<Recorder>(controller_.get());
    recorder->expectSources(input, output);
    // Opening the file cannot happen on the render thread, so it comes first;
    // attaching and starting then happen in one exchange, and the first frame
    // recorded is the first frame of a render pass, from both sources alike.
    AudioError error;
    const bool prepared = recorder->prepareRecordingToFileAtPath(
        Filer::pathToTemporaryDocument(Recorder::kScratchFileName), kAudioFileWAVEType, 16, recordToStereo ? 2 : 1,
        &error);
    if (!prepared) qlog("%s", error.localizedDescription.c_str());
    const bool start = prepared && !justPrepare;
    Recorder* raw = recorder.get();
    controller_->addReceiversWithBlock(input ? recorder : nullptr, output ? recorder : nullptr, [raw, start] {
        if (start) RecorderStartRecording(raw);
    });
    if (start) qlog("RecorderStartRecording");
}

void AppDelegate::endRecording() { removeRecrder(); }

void AppDelegate::removeRecrder() {
    if (controller_ && recorder) {
        controller_->removeInputReceiver(recorder);
        controller_->removeOutputReceiver(recorder);
    }
    if (recorder) recorder->finishRecording();
    recorder.reset();
}

void AppDelegate::removeOsciloscp() {
    if (inputOscilloscope) {
        inputOscilloscope->stop();
        if (controller_) controller_->removeInputReceiver(inputOscilloscope);
        inputOscilloscope->removeFromSuperlayer();
    }
    inputOscilloscope.reset();
}

bool AppDelegate::setACInputEnabled(bool enabled) {
    if (!controller_) return false;
    return controller_->updateWithAudioDescription(controller_->audioDescription(), enabled, false, true);
}

bool AppDelegate::openURL(const std::string& url) {
    if (!Filer::pathFromUrl(url).empty()) handleOpenURL(url);
    return true;
}

Sound* AppDelegate::handleOpenURL(const std::string& url) {
    managedObjectContext();
    lastImport_ = SoundImporter::importFile(url);
    if (!lastImport_.error.empty()) qlog("Import refused: %s", lastImport_.error.c_str());
    if (!lastImport_.warning.empty()) qlog("%s", lastImport_.warning.c_str());
    if (lastImport_.sound) reloadSoundsList();
    return lastImport_.sound;
}

std::string AppDelegate::importHandedOverFile(const std::string& path) {
    Sound* sound = handleOpenURL(path);
    if (!sound) return "error\t" + Utly::oneLine(lastImport_.error);
    return "ok\t" + sound->name();
}

void AppDelegate::reloadSoundsList() {
    if (soundsListReloader) soundsListReloader();
}
