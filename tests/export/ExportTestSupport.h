#pragma once
// Shared by the export screen tests: a launched application on the offline
// engine with a real store in a temporary folder, sounds with real WAV and
// JPEG files, and an export screen whose delays the test runs itself while
// it renders the audio they wait for.
#include <gtest/gtest.h>

#include <QImage>
#include <chrono>
#include <functional>
#include <thread>
#include <memory>
#include <vector>

#include "app/AppDelegate.h"
#include "engine/MainThread.h"
#include "export/ExportVC.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/patterns/Tacter.h"
#include "tests/export/MovieTestSupport.h"
#include "tests/library/LogCapture.h"
#include "tests/library/TestStore.h"

class ExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureGuiApplication();
        app = std::make_unique<AppDelegate>(
            AppDelegateOptions{docs.path(), docs.file("settings.ini"), AudioDriverKind::Offline, &main});
        app->addAudioControlla();
        app->managedObjectContext();
        Filer::setTemporaryDirectory(temp.path());
        ExportVC::setVideosFolder(QString::fromStdString(videos.path()));
    }
    void TearDown() override {
        vc.reset();
        app->removeAllChannelsFromAC();
        ExportVC::setVideosFolder({});
        Filer::setTemporaryDirectory("");
    }

    // A user sound with `hit` on both channels and,
    // with a photo, a small JPEG of one colour.
    Sound* makeSound(const std::string& name, const std::vector<int16_t>& hit, const std::string& folder,
                     bool photo = true) {
        writeStereoWav(Filer::pathForWavSound(name), hit, hit);
        if (photo) {
            QImage image(24, 24, QImage::Format_RGB32);
            image.fill(Qt::red);
            EXPECT_TRUE(image.save(QString::fromStdString(Filer::pathToDocument(Filer::jpgf(name))), "JPG"));
        }
        return CoreDater::shIns().createRecordedSound(name, 3, folder);
    }
    static std::vector<int16_t> hit(size_t frames) {
        std::vector<int16_t> s;
        for (size_t k = 0; k < frames; ++k) s.push_back(int16_t(1000 + k % 500));
        return s;
    }
    Loop* makeLoop(const std::string& name, int bpm, const std::vector<std::pair<Sound*, const char*>>& instruments) {
        std::vector<Instrument*> list;
        for (auto& [sound, pattern] : instruments)
            list.push_back(CoreDater::shIns().createInstrumentWithSound(sound->name(), Tacter::tacts(pattern), 100));
        return CoreDater::shIns().createPreloadedLoop(name, int16_t(bpm), list, "Test", "Tester");
    }

    // "Beat": a hit of `frames` frames once a bar at 120 bpm.
    Loop* oneHitBeat(size_t frames) {
        return makeLoop("Beat", 120, {{makeSound("Hit", hit(frames), "Mine"), "1---------------"}});
    }
    // "Song": two bars at 120 bpm of the loop, in one row.
    void songOf(Loop* loop) {
        auto& d = CoreDater::shIns();
        TrackLoop* row =
            d.createTrackLoopWithLoop(loop, {d.loopSqrsWithSquares(Tacter::tacts("1---------------"))}, 100, 3);
        d.createPreloadedTrack("Song", 120, 2, {row}, "X");
    }

    // An export screen for the item whose delays wait in `pending`.
    ExportVC& screen(const QString& kind, const QString& name) {
        vc = std::make_unique<ExportVC>();
        vc->setScheduler([this](int ms, std::function<void()> task) { pending.push_back({ms, std::move(task)}); });
        vc->setKind(kind);
        vc->setName(name);
        QObject::connect(vc.get(), &ExportVC::removeExportVC, [this] { ++removed; });
        return *vc;
    }
    // The screen for "Beat" set to save a video, filming `filmed` when given.
    ExportVC& beatVideoToSave(QQuickItem* filmed = nullptr) {
        ExportVC& loop = screen("loop", "Beat");
        if (filmed) loop.setFilmedItem(filmed);
        loop.audioVideoChanged(1);
        loop.saveOrSendChanged(0);
        return loop;
    }
    // Runs the delayed task of `ms` milliseconds queued first.
    bool runDelayed(int ms) {
        for (size_t i = 0; i < pending.size(); ++i) {
            if (pending[i].first != ms) continue;
            auto task = std::move(pending[i].second);
            pending.erase(pending.begin() + long(i));
            task();
            return true;
        }
        return false;
    }
    void pump() {
        main.runPending();
        app->audioController()->pollForMessageResponses();
        main.runPending();
        processEventsUntil([] { return true; }, 0.0);
    }
    // Presses send, renders the 0.36 s lead-in, starts playback and renders
    // until the end of playback was handled.
    void capture() {
        vc->sendPressed();
        ASSERT_EQ(vc->phase(), ExportVC::Capturing);
        app->audioController()->renderOffline(kLeadInFrames);
        ASSERT_TRUE(runDelayed(ExportVC::kLeadInMs));
        // A quarter of a second at a time, with a pause that lets the
        // recorder's writer thread (4 s of room) keep up with the rendering.
        for (int i = 0; i < 400 && vc->phase() == ExportVC::Capturing; ++i) {
            app->audioController()->renderOffline(11025);
            pump();
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
        }
        ASSERT_NE(vc->phase(), ExportVC::Capturing);
    }
    // Waits (main-thread events) until the screen shows a result or composes a mail.
    bool waitForEnd(double seconds = 60.0) {
        return processEventsUntil(
            [this] {
                pump();
                return vc->phase() == ExportVC::Result || vc->phase() == ExportVC::Composing;
            },
            seconds);
    }

    static constexpr uint32_t kLeadInFrames = 15876;  // 0.36 s
    TempDir docs, temp, videos;
    RunLoopMainThread main;
    std::unique_ptr<AppDelegate> app;
    std::unique_ptr<ExportVC> vc;
    std::vector<std::pair<int, std::function<void()>>> pending;
    int removed = 0;
};
