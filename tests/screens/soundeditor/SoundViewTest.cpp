// The sound panel's decisions on a real library: what Done writes for new,
// built-in and user sounds, where the files go, what Cancel leaves, and a
// recording through the engine from the microphone to the trimmed file and
// its waveform.
#include <QImage>
#include <QSettings>
#include <QSignalSpy>
#include <chrono>
#include <cmath>
#include <thread>

#include "export/Framr.h"
#include "library/media/ImageCache.h"
#include "library/model/Model.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"
#include "screens/soundeditor/PhotoDelegatVC.h"
#include "screens/soundeditor/SoundColorView.h"
#include "screens/soundeditor/SoundPhotoView.h"
#include "tests/screens/soundeditor/SoundEditorTestSupport.h"

using namespace soundeditortest;

namespace {

const QRectF kStart(10, 10, 40, 40);

// The known microphone signal: silence, a burst whose every sample is louder
// than the trim threshold and differs from its neighbours, silence.
constexpr uint32_t kBurstStart = 5000, kBurstEnd = 8000, kTakeFrames = 14000;
int16_t micSample(uint32_t frame) {
    if (frame < kBurstStart || frame >= kBurstEnd) return 0;
    const int magnitude = 1500 + int(frame * 37 % 3000);
    return int16_t(frame % 2 ? magnitude : -magnitude);
}

class SoundViewTest : public SoundEditorTest {
protected:
    // Records the known signal on the offline engine (the same on both sides).
    void recordKnownTake(SoundView& view) {
        view.startRecordPressed();
        ASSERT_TRUE(view.recording());
        ASSERT_TRUE(engine()->inputEnabled());
        std::vector<int16_t> mic(kTakeFrames);
        for (uint32_t k = 0; k < kTakeFrames; ++k) mic[k] = micSample(k);
        std::vector<int16_t> right = mic;
        AudioBufferList in{2, {{1, kTakeFrames * 2, mic.data()}, {1, kTakeFrames * 2, right.data()}}};
        engine()->renderOffline(kTakeFrames, nullptr, &in);
        view.stopRecordPressed();
    }
};

TEST_F(SoundViewTest, ANewSoundOpensWithTheNextNameMySoundsAMiddleShadeAndTheMicrophoneOn) {
    dater().createRecordedSound(dater().getNameForNewRecordedSound(), 1, "Mine");
    const size_t before = soundCount();
    SoundView view;
    view.addNewSoundView(kStart);
    EXPECT_TRUE(view.isNew());
    EXPECT_EQ(view.name().toStdString(), dater().getNameForNewRecordedSound());
    EXPECT_EQ(view.folderName(), "My sounds");
    EXPECT_GE(view.colorNum() % 9, 2);
    EXPECT_LE(view.colorNum() % 9, 5);
    EXPECT_FALSE(view.elementsShown());
    EXPECT_EQ(view.frame(), Framr::fullScrnCircle());
    SoundView::waitForInputSwitch();
    EXPECT_TRUE(engine()->inputEnabled());

    QSignalSpy cancelled(&view, &SoundView::soundRecordingWasCancelled);
    QSignalSpy removed(&view, &SoundView::removeSoundView);
    view.cancelPressed();
    SoundView::waitForInputSwitch();
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_EQ(removed.count(), 1);
    EXPECT_FALSE(engine()->inputEnabled());
    EXPECT_EQ(soundCount(), before);
}

TEST_F(SoundViewTest, AutotrimmedTakeIsWhatTheFileTheWaveformAndTheLengthShowFrameByFrame) {
    SoundView view;
    view.addNewSoundView(kStart);
    view.setWaveformColumns(int(kTakeFrames));  // one column per frame, before trimming
    app->autotrimRecords = true;
    recordKnownTake(view);
    EXPECT_FALSE(view.recording());
    EXPECT_TRUE(view.elementsShown());
    EXPECT_FALSE(app->recorder || app->inputOscilloscope);

    // Ten frames kept before the first sound, the end 100 frames after the last (exclusive).
    const uint32_t first = kBurstStart - 10, length = (kBurstEnd - 1 + 100) - first;
    const WavContents w = readWav(scratch());
    ASSERT_EQ(w.channels, 1);
    ASSERT_EQ(w.frames, length);
    for (uint32_t k = 0; k < length; ++k) ASSERT_EQ(w.at(k, 0), micSample(first + k)) << k;

    EXPECT_EQ(view.waveform().frames, length);
    EXPECT_DOUBLE_EQ(view.duration(), length / 44100.0);
    EXPECT_EQ(view.durationText(), QString::asprintf("%.2f s", length / 44100.0));
    view.setWaveformColumns(int(length));  // one column per trimmed frame
    ASSERT_EQ(view.waveMaxima().size(), qsizetype(length));
    for (uint32_t k = 0; k < length; ++k) {
        ASSERT_FLOAT_EQ(float(view.waveMaxima()[k]), micSample(first + k) / 32768.0f) << k;
        ASSERT_FLOAT_EQ(float(view.waveMinima()[k]), micSample(first + k) / 32768.0f) << k;
    }

    // Switched off, the next take keeps every frame.
    view.setAutotrimRecords(false);
    EXPECT_FALSE(QSettings(QString::fromStdString(docs.file("settings.ini")), QSettings::IniFormat)
                     .value("autotrimRecords")
                     .toBool());
    recordKnownTake(view);
    EXPECT_EQ(readWav(scratch()).frames, kTakeFrames);
    EXPECT_EQ(view.waveform().frames, kTakeFrames);

    QSignalSpy added(&view, &SoundView::soundWasAddedOrEdited);
    QSignalSpy finished(&view, &SoundView::finished);
    view.setName("Burst");
    view.donePressed();
    ASSERT_EQ(added.count(), 1);
    EXPECT_EQ(finished.at(0).at(0).toString(), "created");
    Sound* sound = dater().findSoundWithName("Burst");
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->inFolder()->name(), "My sounds");
    EXPECT_EQ(sound->color(), view.colorNum());
    EXPECT_EQ(readWav(Filer::pathForSound(sound)).frames, kTakeFrames);
    EXPECT_FALSE(fileExists(scratch()));
}

TEST_F(SoundViewTest, TheInputTraceFollowsTheMicrophoneWhileRecording) {
    SoundView view;
    view.addNewSoundView(kStart);
    view.startRecordPressed();
    ASSERT_TRUE(app->inputOscilloscope);
    std::vector<int16_t> mic(4096, 16384), right(4096, 16384);
    AudioBufferList in{2, {{1, 4096 * 2, mic.data()}, {1, 4096 * 2, right.data()}}};
    engine()->renderOffline(4096, nullptr, &in);
    app->inputOscilloscope->display();
    ASSERT_EQ(view.tracePoints().size(), OscilloscopeLayer::kPointCount);
    // Half scale: the middle point (full taper) lies a quarter height from the centre.
    const double h = Framr::ffSoundWave().height();
    EXPECT_NEAR(view.tracePoints()[62].y(), h / 2 + 0.5 * h / 2, 1e-6);
    view.stopRecordPressed();
    EXPECT_TRUE(view.tracePoints().isEmpty());
    EXPECT_TRUE(engine()->inputReceivers().empty());
}

TEST_F(SoundViewTest, DoneOnABuiltInSoundCopiesItOnlyWhenSomethingChanged) {
    writeStereoWav(res.file("Clap.wav"), std::vector<int16_t>(300, 7), std::vector<int16_t>(300, 7));
    Sound* clap = dater().createPreloadedSound("Clap", 20, "Drums", "Maker");
    dater().createRecordedSound("Clap 2", 3, "Mine");  // the first free copy name is taken
    const size_t before = soundCount();

    {
        SoundView view;
        view.openExisting(clap, kStart);
        EXPECT_TRUE(view.nothingChanged());
        QSignalSpy finished(&view, &SoundView::finished);
        view.donePressed();
        EXPECT_EQ(soundCount(), before);
        EXPECT_EQ(finished.at(0).at(0).toString(), "unchanged");
    }
    SoundView view;
    view.openExisting(clap, kStart);
    view.colorPicked(77);
    QSignalSpy added(&view, &SoundView::soundWasAddedOrEdited);
    view.donePressed();
    ASSERT_EQ(added.count(), 1);
    EXPECT_EQ(added.at(0).at(0).toString(), "Clap 3");
    Sound* copy = dater().findSoundWithName("Clap 3");
    ASSERT_TRUE(copy);
    EXPECT_FALSE(copy->preloaded());
    EXPECT_EQ(copy->color(), 77);
    EXPECT_EQ(copy->inFolder()->name(), "Drums");
    EXPECT_EQ(readWav(Filer::pathForSound(copy)).samples, readWav(res.file("Clap.wav")).samples);
    EXPECT_EQ(clap->color(), 20);  // the built-in sound is as it was
}

TEST_F(SoundViewTest, RenamingAUserSoundToATakenNameMovesBothFilesToAFreeVariant) {
    Sound* beat = userSound("Beat", 5, true);
    userSound("Kick", 6);
    userSound("Kick 2", 7);
    const std::string oldWav = Filer::pathForWavSound("Beat"), oldJpg = Filer::pathToDocument("Beat.jpg");
    const std::vector<int16_t> samples = readWav(oldWav).samples;

    SoundView view;
    view.openExisting(beat, kStart);
    view.setName("Kick");
    view.setFolderName("   ");
    view.donePressed();
    EXPECT_EQ(beat->name(), "Kick 3");
    EXPECT_EQ(beat->inFolder()->name(), "My sounds");
    EXPECT_FALSE(fileExists(oldWav) || fileExists(oldJpg));
    EXPECT_EQ(readWav(Filer::pathForWavSound("Kick 3")).samples, samples);
    EXPECT_EQ(readText(Filer::pathToDocument("Kick 3.jpg")), "photo of Beat");
}

TEST_F(SoundViewTest, AFailedRenameKeepsTheNameAndItsPhotoButSavesTheColour) {
    Sound* beat = userSound("Beat", 5, true);
    std::filesystem::remove(Filer::pathForWavSound("Beat"));  // the sound file is gone

    SoundView view;
    view.openExisting(beat, kStart);
    view.setName("Loud");
    view.colorPicked(100);
    QSignalSpy removed(&view, &SoundView::removeSoundView);
    view.donePressed();
    EXPECT_EQ(beat->name(), "Beat");
    EXPECT_EQ(beat->color(), 100);
    EXPECT_EQ(readText(Filer::pathToDocument("Beat.jpg")), "photo of Beat");
    EXPECT_FALSE(fileExists(Filer::pathToDocument("Loud.jpg")));
    EXPECT_FALSE(view.lastError().isEmpty());
    EXPECT_EQ(removed.count(), 1);
    // What reached the store is on disk.
    StoreError error;
    const auto reread = LibraryStore::openReadOnly(docs.file(LibraryStore::kFileName), &error);
    ASSERT_TRUE(reread) << error.text();
    int found = 0;
    for (Sound* sound : reread->all<Sound>()) {
        if (sound->name() != "Beat") continue;
        ++found;
        EXPECT_EQ(sound->color(), 100);
    }
    EXPECT_EQ(found, 1);
}

TEST_F(SoundViewTest, NamesAreCleanedAndBlankOnesGetTheDefaults) {
    Sound* beat = userSound("Beat", 5);
    SoundView view;
    view.openExisting(beat, kStart);
    view.setName("Be/at?");
    EXPECT_TRUE(view.nothingChanged());  // the cleaned name is the same
    view.setName(" \t ");
    EXPECT_EQ(view.storedName(), "Sound");
    EXPECT_FALSE(view.nothingChanged());
}

TEST_F(SoundViewTest, DoneWithoutATakeCreatesNothingAndSaysSo) {
    SoundView view;
    view.addNewSoundView(kStart);
    const size_t before = soundCount();
    QSignalSpy finished(&view, &SoundView::finished);
    view.donePressed();
    EXPECT_EQ(soundCount(), before);
    EXPECT_EQ(finished.at(0).at(0).toString(), "failed");
    EXPECT_FALSE(view.lastError().isEmpty());
}

TEST_F(SoundViewTest, APickedPhotoIsCroppedWrittenAndMovedWithTheNewSound) {
    SoundView view;
    view.addNewSoundView(kStart);
    recordKnownTake(view);
    PhotoDelegatVC host;
    host.setSoundV(&view);
    QSignalSpy picker(&host, &PhotoDelegatVC::showImagePickerForCamera);
    SoundPhotoView* chooser = view.photoPressed();
    chooser->photoGalleryPressed();
    ASSERT_EQ(picker.count(), 1);
    EXPECT_EQ(picker.at(0).at(0).toInt(), 0);

    // A wide picture: red on the left and right quarters, green in the middle square.
    QImage wide(800, 400, QImage::Format_RGB32);
    wide.fill(Qt::red);
    for (int y = 0; y < 400; ++y)
        for (int x = 200; x < 600; ++x) wide.setPixelColor(x, y, Qt::green);
    const QString file = QString::fromStdString(temp.file("wide.png"));
    ASSERT_TRUE(wide.save(file));
    ASSERT_TRUE(host.applyImageFile(QUrl::fromLocalFile(file)));
    EXPECT_FALSE(host.applyImageFile(QUrl::fromLocalFile(QString::fromStdString(scratch()))));  // not a picture
    ASSERT_TRUE(chooser->hasPickedImage());
    EXPECT_EQ(chooser->photo().size(), QSize(320, 320));
    EXPECT_EQ(chooser->photo().pixelColor(2, 2), QColor(Qt::green));
    EXPECT_EQ(chooser->photo().pixelColor(317, 317), QColor(Qt::green));

    chooser->donePressed();
    const std::string tempPhoto = temp.file(Filer::kTempPhotoName);
    ASSERT_TRUE(fileExists(tempPhoto));
    EXPECT_TRUE(view.hasNewPhoto());
    EXPECT_EQ(view.photoImage().size(), QSize(320, 320));

    view.setName("My snapshot");
    view.donePressed();
    EXPECT_FALSE(fileExists(tempPhoto));
    const QImage saved(QString::fromStdString(Filer::pathToDocument("My snapshot.jpg")), "JPG");
    EXPECT_EQ(saved.size(), QSize(320, 320));
}

TEST_F(SoundViewTest, PreviewPlaysAsTheOneShotAndClearsItselfWhenFinished) {
    Sound* beat = userSound("Beat", 5);  // 441 frames
    SoundView view;
    view.openExisting(beat, kStart);
    view.playPressed();
    ASSERT_TRUE(app->oneshot);
    EXPECT_TRUE(view.playing());
    EXPECT_EQ(view.playImage(), "stopButton");
    view.playPressed();  // stop
    EXPECT_FALSE(app->oneshot);
    EXPECT_FALSE(view.playing());

    view.playPressed();
    engine()->renderOffline(1024);
    main.runUntil([&] { return !view.playing(); }, std::chrono::seconds(5));
    EXPECT_FALSE(view.playing());
    EXPECT_FALSE(app->oneshot);
    EXPECT_TRUE(engine()->channels().empty());
}

TEST(SoundColorViewTest, TouchesPickRowTimesNinePlusColumnEvenOnTheLastPixel) {
    const QSizeF screen(390, 844);
    EXPECT_EQ(SoundColorView::colorNumberAt({0, 0}, screen), 0);
    EXPECT_EQ(SoundColorView::colorNumberAt({389.9, 843.9}, screen), 143);
    EXPECT_EQ(SoundColorView::colorNumberAt({390, 844}, screen), 143);
    // Row 1 begins at 844 / 16 = 52.75; column 4 at 4 x 390 / 9 = 173.3.
    EXPECT_EQ(SoundColorView::colorNumberAt({173.4, 52.8}, screen), 13);
    EXPECT_EQ(SoundColorView::colorNumberAt({173.3, 52.7}, screen), 3);

    SoundColorView chooser;
    QSignalSpy picked(&chooser, &SoundColorView::colorPicked);
    QSignalSpy removed(&chooser, &SoundColorView::removeSoundColorView);
    chooser.touchAt(389, 843, 390, 844);
    ASSERT_EQ(picked.count(), 1);
    EXPECT_EQ(picked.at(0).at(0).toInt(), 143);
    EXPECT_EQ(removed.count(), 1);
}

class NullDeviceTest : public SoundEditorTest {
protected:
    void SetUp() override { start(AudioDriverKind::Null); }
};

TEST_F(NullDeviceTest, ASilentTakeKeepsItsLengthAndBecomesASound) {
    SoundView view;
    view.addNewSoundView(kStart);
    view.startRecordPressed();
    ASSERT_TRUE(app->recorder);
    // The null device paces itself in real time; half a second of silence.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (app->recorder->currentTime() < 0.5 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    view.stopRecordPressed();
    const WavContents w = readWav(scratch());
    ASSERT_GT(w.frames, 8192);  // past the frames held back for the missing microphone
    for (int16_t s : w.samples) ASSERT_EQ(s, 0);
    EXPECT_EQ(view.waveform().frames, uint32_t(w.frames));  // silence is not trimmed
    for (qreal level : view.waveMaxima()) ASSERT_EQ(level, 0.0);

    view.setName("Quiet");
    view.donePressed();
    Sound* quiet = dater().findSoundWithName("Quiet");
    ASSERT_TRUE(quiet);
    EXPECT_EQ(readWav(Filer::pathForSound(quiet)).frames, w.frames);
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);
    return RUN_ALL_TESTS();
}
