// The export screen's flow on the offline engine: what it offers by kind,
// capturing a loop or a track in real time, trimming, saving as a sound,
// films joined with their audio, and cancel.
#include <QFile>
#include <fstream>
#include <QDir>
#include <QQuickItem>
#include <QQuickWindow>

#include "export/RenderedSound.h"
#include "playback/Loopplayer.h"
#include "playback/StepTiming.h"
#include "recording/Recorder.h"
#include "tests/export/ExportTestSupport.h"

namespace {

std::vector<std::string> namesIn(SoundFolder* folder) {
    std::vector<std::string> names;
    if (folder)
        for (Sound* s : folder->items()) names.push_back(s->name());
    return names;
}

}  // namespace

TEST_F(ExportTest, WhatEachKindOffers) {
    makeSound("Hit", hit(100), "Mine");
    makeSound("Ping", hit(3000), "Mine");
    CoreDater::shIns().soundFolder("Empty");
    CoreDater::shIns().save();

    ExportVC& sound = screen("sound", "Hit");
    EXPECT_TRUE(sound.offersExport());
    EXPECT_EQ(sound.fileName(), "Hit.wav");
    EXPECT_EQ(sound.fileIcon(), "fileIcon");
    EXPECT_EQ(sound.sizeText(), "444 bytes");  // 44-byte header + 100 stereo 16-bit frames
    EXPECT_TRUE(sound.toMail() && !sound.video());

    ExportVC& folder = screen("soundFolder", "Mine");
    EXPECT_EQ(folder.fileName(), "2 files");
    EXPECT_EQ(folder.fileIcon(), "filesIcon");
    EXPECT_EQ(folder.sizeText(), "12 KB");  // 444 + 12044 bytes

    ExportVC& empty = screen("soundFolder", "Empty");
    EXPECT_FALSE(empty.offersExport());
    empty.sendPressed();
    empty.settingsPressed();
    EXPECT_EQ(empty.phase(), ExportVC::Idle);
    EXPECT_FALSE(empty.settingsShown());
    EXPECT_EQ(empty.fileIcon(), "fileIcon");  // fewer than two sounds

    {
        LogCapture log;
        CoreDater::shIns().loopFolder("Beats");
        CoreDater::shIns().save();
        ExportVC& loops = screen("loopFolder", "Beats");
        EXPECT_FALSE(loops.offersExport());
        EXPECT_TRUE(log.contains("LoopFolder"));
    }
}

TEST_F(ExportTest, LoopAndTrackSettingsFollowTheirRules) {
    songOf(oneHitBeat(100));

    ExportVC& l = screen("loop", "Beat");
    EXPECT_TRUE(l.toMail() && !l.video() && l.repeats() == 1);
    EXPECT_TRUE(l.saveOrSendVisible() && l.repeatsVisible() && !l.formatVisible());
    EXPECT_EQ(l.saveTitle(), "Make a sound");
    l.audioVideoChanged(1);
    EXPECT_TRUE(l.video() && l.formatVisible());
    EXPECT_EQ(l.saveTitle(), "Save to media");
    for (auto [index, repeats] : {std::pair{0, 1}, {1, 2}, {2, 4}, {3, 8}}) {
        l.repeatsChanged(index);
        EXPECT_EQ(l.repeats(), repeats);
        EXPECT_EQ(l.repeatsIndex(), index);
    }
    l.attachPhotosChanged(1);
    EXPECT_FALSE(l.includePhotos());
    l.saveOrSendChanged(0);
    EXPECT_FALSE(l.toMail());
    l.settingsPressed();
    EXPECT_TRUE(l.settingsShown());
    l.okSettingsPressed();
    EXPECT_FALSE(l.settingsShown());

    // A track starts as a video saved to the Videos folder; as sound it can only be mailed.
    ExportVC& t = screen("track", "Song");
    EXPECT_TRUE(t.video() && !t.toMail());
    EXPECT_EQ(t.saveTitle(), "Save to media");
    EXPECT_TRUE(t.saveOrSendVisible() && !t.repeatsVisible());
    t.audioVideoChanged(0);
    EXPECT_FALSE(t.saveOrSendVisible());
    // Given the item itself, as the command line does, the filmed picture
    // still learns it shows a track and its rows.
    ExportVC given;
    given.initWithContnt(t.content());
    EXPECT_EQ(given.kind(), "track");
    EXPECT_EQ(given.trackColors().size(), 1);

    LogCapture log;
    capture();  // two squares of a one-hit loop at 120 bpm
    EXPECT_EQ(t.curTact(), 32);
    EXPECT_EQ(t.phase(), ExportVC::Composing);  // mailed although "save" was chosen
    EXPECT_TRUE(log.contains("Warning: set up mail app"));
    EXPECT_EQ(t.composer(), nullptr);  // no account: the screen stays empty
    t.cancelPressed();
    EXPECT_EQ(removed, 1);
}

TEST_F(ExportTest, LoopSavedAsSoundIsTrimmedToItsSoundAndNamedUniquely) {
    Sound* s = makeSound("Hit", hit(500), "Mine");
    makeSound("Beat", hit(10), "Mine", false);  // a sound already has the loop's name
    makeLoop("Beat", 120, {{s, "1-------1-------"}});

    ExportVC& vc = screen("loop", "Beat");
    vc.repeatsChanged(3);    // 8 bars
    vc.saveOrSendChanged(0);  // make a sound
    // The loop's grid (what a video films) pulses with every hit.
    ASSERT_EQ(vc.loopView()->count(), 1);
    int pulses = 0;
    QObject::connect(vc.loopView(), &LoopView::soundingChanged,
                     [&] { pulses += (vc.loopView()->sounding() & 1) ? 1 : 0; });
    capture();
    EXPECT_EQ(pulses, 16);
    EXPECT_EQ(vc.loopView()->sounding(), 0) << "at rest once the capture ended";
    // 8 bars x 16 steps, reported by every channel the player has.
    ASSERT_EQ(app->loopplayers().size(), 1u);
    int channels = 0;
    for (int slot = 0; slot < Loopplayer::kSlots; ++slot) channels += app->loopplayers()[0]->channelAtIndex(slot) ? 1 : 0;
    EXPECT_GE(channels, 1);
    EXPECT_EQ(vc.curTact(), 128 * channels);
    EXPECT_DOUBLE_EQ(vc.progress(), 1.0);
    ASSERT_EQ(vc.phase(), ExportVC::Result);
    EXPECT_EQ(vc.resultText(), "Sound's saved");

    SoundFolder* rendered = CoreDater::shIns().soundFolder(kRenderedLoopsFolder);
    ASSERT_EQ(namesIn(rendered), std::vector<std::string>{"Beat 2"});
    const WavContents w = readWav(Filer::pathForWavSound("Beat 2"));
    // The lead-in is gone: the file starts with the first hit and ends just
    // before the last hit's last sample (7 bars and a half later, plus 500 frames).
    const int64_t step = int64_t(framesPerStep(120));
    ASSERT_GT(w.frames, 0);
    EXPECT_EQ(w.at(0, 0), 1000);
    EXPECT_EQ(w.frames, 15 * 8 * step + 499);
    EXPECT_NE(w.at(w.frames - 1, 0), 0);

    // The result closes the screen and takes the scratch files with it.
    ASSERT_TRUE(runDelayed(ExportVC::kResultCloseMs));
    EXPECT_EQ(vc.phase(), ExportVC::Closed);
    EXPECT_EQ(removed, 1);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(temp.file(Recorder::kScratchFileName))));
}

TEST_F(ExportTest, CancelDuringCaptureStopsEverythingAndRemovesScratchFiles) {
    Sound* s = makeSound("Hit", hit(500), "Mine");
    makeLoop("Beat", 120, {{s, "1---1---1---1---"}});
    ExportVC& vc = screen("loop", "Beat");
    vc.sendPressed();
    app->audioController()->renderOffline(kLeadInFrames);
    ASSERT_TRUE(runDelayed(ExportVC::kLeadInMs));
    app->audioController()->renderOffline(4410);
    pump();
    ASSERT_TRUE(app->recorder);
    ASSERT_EQ(app->loopplayers().size(), 1u);
    ASSERT_TRUE(QFile::exists(QString::fromStdString(temp.file(Recorder::kScratchFileName))));

    vc.cancelPressed();
    EXPECT_EQ(removed, 1);
    EXPECT_FALSE(app->recorder);
    EXPECT_TRUE(app->loopplayers().empty());
    EXPECT_TRUE(app->audioController()->outputReceivers().empty());
    EXPECT_FALSE(QFile::exists(QString::fromStdString(temp.file(Recorder::kScratchFileName))));
    // Playing on changes nothing: no end is handled, no sound is made.
    app->audioController()->renderOffline(44100 * 3);
    pump();
    EXPECT_EQ(vc.phase(), ExportVC::Closed);
    EXPECT_EQ(CoreDater::shIns().soundFolder(kRenderedLoopsFolder)->items().size(), 0u);

    // Cancel before playback started: the lead-in's task does nothing later.
    ExportVC& again = screen("loop", "Beat");
    again.sendPressed();
    again.cancelPressed();
    EXPECT_TRUE(runDelayed(ExportVC::kLeadInMs));
    EXPECT_TRUE(app->loopplayers().empty());
}

TEST_F(ExportTest, VideosKeepTheirTrailingSilenceAndLandInTheVideosFolder) {
    songOf(oneHitBeat(500));

    // A track: its picture as a still movie, joined with the audio.
    ExportVC& t = screen("track", "Song");
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(t.resultText(), "Video's saved");
    const std::string movie = videos.file("Song.mov");
    const ProbedMovie probed = ffprobe(movie);
    ASSERT_TRUE(probed.stream("video") && probed.stream("audio"));
    // Two bars at 120 bpm: 4 s less nothing at the start, the silence after the last hit kept.
    EXPECT_NEAR(probed.stream("audio")->duration, 4.0, 0.1);

    // A loop filmed from a window: the same, the second one numbered.
    QQuickWindow window;
    window.resize(160, 160);
    QQuickItem item(window.contentItem());
    item.setSize(QSizeF(160, 160));
    window.show();
    ExportVC& l = beatVideoToSave(&item);
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(l.resultText(), "Video's saved");
    const ProbedMovie loopMovie = ffprobe(videos.file("Beat.mov"));
    ASSERT_TRUE(loopMovie.stream("video") && loopMovie.stream("audio"));
    EXPECT_NEAR(loopMovie.stream("audio")->duration, 2.0, 0.1);
    // The same name again gets a number.
    beatVideoToSave(&item);
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_TRUE(QFile::exists(QString::fromStdString(videos.file("Beat 2.mov"))));
}

// Headless, with no view to film, a loop video is its still picture joined
// with the audio: no filming writer may race it for the movie's file.
TEST_F(ExportTest, ALoopVideoWithNoViewToFilmIsMadeFromItsStillPicture) {
    oneHitBeat(500);
    ExportVC& l = beatVideoToSave();
    LogCapture log;
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(l.resultText(), "Video's saved");
    // A filming writer would finish on its own thread soon after.
    processEventsUntil([&] { return log.contains("markAsFinished"); }, 1.0);
    EXPECT_FALSE(log.contains("markAsFinished"));
    const ProbedMovie movie = ffprobe(videos.file("Beat.mov"));
    EXPECT_TRUE(movie.stream("video") && movie.stream("audio"));
}

TEST_F(ExportTest, AVideoThatCannotBeSavedSaysSo) {
    oneHitBeat(500);
    { std::ofstream(temp.file("file")) << "x"; }
    ExportVC::setVideosFolder(QString::fromStdString(temp.file("file") + "/Videos"));  // under a plain file
    ExportVC& l = beatVideoToSave();
    LogCapture log;
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(l.resultText(), "Video's not saved");
    EXPECT_TRUE(log.contains("Error copying video to camera roll:"));
}
