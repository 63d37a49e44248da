#pragma once
// Real players on a real (offline) engine, with sounds written as WAV files
// whose every frame says which sound and which position it is.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/AudioChannel.h"
#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/MainThread.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/patterns/Tacter.h"
#include "library/store/LibraryStore.h"
#include "playback/Loopplayer.h"
#include "playback/PlaybackContext.h"
#include "tests/library/TestStore.h"
#include "tests/playback/ReferenceSequencer.h"

// Frame p of sound `id`: left 1 + p % 2000, right 100 * id + 1 + p / 2000.
// Small enough that eight of them mix without clipping.
inline RefSound encodedSound(int id, uint32_t length) {
    RefSound s;
    for (uint32_t p = 0; p < length; ++p) {
        s.left.push_back(static_cast<int16_t>(1 + p % 2000));
        s.right.push_back(static_cast<int16_t>(100 * id + 1 + p / 2000));
    }
    return s;
}

inline void writeWav(const std::string& path, const RefSound& s) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(f, nullptr) << sf_strerror(nullptr);
    std::vector<int16_t> inter;
    for (uint32_t p = 0; p < s.length(); ++p) {
        inter.push_back(s.left[p]);
        inter.push_back(s.right[p]);
    }
    sf_writef_short(f, inter.data(), s.length());
    sf_close(f);
}

// Records what a player reports, with the frame the test says it is at.
struct RecordingLoopDelegate : LoopplayerDelegate {
    uint64_t now = 0;
    std::vector<std::pair<uint64_t, RefEvent>> events;
    void animateTact(uint16_t s) override { events.push_back({now, {"tact", s}}); }
    void animateStartPlaying(int i) override { events.push_back({now, {"start", i}}); }
    void animateStopPlaying(int i) override { events.push_back({now, {"stop", i}}); }
    void loopEndRepeating() override { events.push_back({now, {"end", 0}}); }
    std::vector<uint64_t> framesOf(const std::string& what, int value) const {
        std::vector<uint64_t> out;
        for (auto& e : events)
            if (e.second.what == what && e.second.value == value) out.push_back(e.first);
        return out;
    }
};

class PlayerHarness : public ::testing::Test {
public:
    // Calls one slot's render block directly, as the engine would.
    static void renderChannel(const std::shared_ptr<AudioChannel>& channel, AudioController* c, uint32_t frames,
                              int16_t* left, int16_t* right) {
        AudioBufferList list{};
        list.mNumberBuffers = 2;
        list.mBuffers[0] = {1, frames * 2, left};
        list.mBuffers[1] = {1, frames * 2, right};
        AudioTimeStamp ts{};
        channel->render(c, ts, frames, &list);
    }

protected:
    void SetUp() override {
        Filer::setDocumentsDirectory(docs.path());
        Filer::setResourceDirectory(res.path());
        store = LibraryStore::open(docs.file(LibraryStore::kFileName), nullptr);
        CoreDater::shIns().setManagedObjectContext(store.get());
        AudioControllerOptions options;
        options.driver = AudioDriverKind::Offline;
        options.mainThread = &mainThread;
        controller = std::make_unique<AudioController>(AudioController::nonInterleaved16BitStereoAudioDescription(),
                                                       false, options);
        ASSERT_TRUE(controller->start(nullptr));
        context.audioController = controller.get();
        PlaybackContext::setShared(&context);
        // The spare slots' built-in sound.
        sounds["Kick"] = encodedSound(0, 3000);
        writeWav(res.file("Kick.wav"), sounds["Kick"]);
    }
    void TearDown() override {
        for (auto p : std::vector<std::shared_ptr<Loopplayer>>(context.loopplayers)) Loopplayer::stopLoop(p);
        // The shared cache outlives the players, as in the application, which frees it when it tears down.
        for (auto& entry : context.loadedFiles) Filer::freeBufList(entry.second->bufferList());
        context.loadedFiles.clear();
        PlaybackContext::setShared(nullptr);
        controller->stop();
        CoreDater::shIns().setManagedObjectContext(nullptr);
    }

    // A user sound whose WAV holds encodedSound(id, length).
    const RefSound& addSound(const std::string& name, int id, uint32_t length) {
        sounds[name] = encodedSound(id, length);
        writeWav(Filer::pathForWavSound(name), sounds[name]);
        CoreDater::shIns().createRecordedSound(name, 1, "Test");
        return sounds[name];
    }

    struct Row {
        std::string sound;
        std::string pattern;
        int volume;
    };
    Loop* makeLoop(int bpm, const std::vector<Row>& rows) {
        std::vector<Instrument*> instruments;
        for (const Row& r : rows)
            instruments.push_back(
                CoreDater::shIns().createInstrumentWithSound(r.sound, Tacter::tacts(r.pattern), static_cast<int16_t>(r.volume)));
        return CoreDater::shIns().createPreloadedLoop("Loop " + std::to_string(++loops), static_cast<int16_t>(bpm),
                                                      instruments, "Test", "Tester");
    }

    TempDir docs, res;
    std::unique_ptr<LibraryStore> store;
    RunLoopMainThread mainThread;
    std::unique_ptr<AudioController> controller;
    PlaybackContext context;
    std::map<std::string, RefSound> sounds;
    int loops = 0;
};
