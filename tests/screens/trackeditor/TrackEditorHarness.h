#pragma once
// The track editor's controller on a real store and the offline engine, with
// an offscreen application for its timers and views.
#include <QGuiApplication>
#include <QTemporaryDir>
#include <memory>

#include "library/model/Model.h"
#include "playback/Trackplayer.h"
#include "screens/trackeditor/OneTrackVC.h"
#include "screens/trackeditor/internal/TrackFramr.h"
#include "tests/playback/PlayerHarness.h"
#include "tests/screens/OffscreenApplication.h"


class TrackEditorHarness : public PlayerHarness {
protected:
    static constexpr uint64_t kBar = 16 * 5512;  // one square at 120 bpm

    void SetUp() override {
        PlayerHarness::SetUp();
        addSound("Hit", 1, 1000);
        hitLoop = makeLoop(120, {{"Hit", "1---------------", 100}});
        auto& d = CoreDater::shIns();
        easyBeat = d.createPreloadedLoop("Easy beat 95", 95, {d.createInstrumentWithSound("Hit", 0x8888, 100)},
                                         "Test", "Tester");
    }
    void TearDown() override {
        vc.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // closed row views
        mainThread.runPending();
        PlayerHarness::TearDown();
    }

    // A built-in track at 120 bpm, one row per mask (rows play the one-hit loop).
    Track* makeTrack(int squares, const std::vector<uint16_t>& rowMasks) {
        auto& d = CoreDater::shIns();
        std::vector<TrackLoop*> rows;
        for (uint16_t m : rowMasks)
            rows.push_back(d.createTrackLoopWithLoop(hitLoop, {d.loopSqrsWithSquares(m)}, 100, 20));
        return d.createPreloadedTrack("Hotel " + std::to_string(++tracks), 120, static_cast<int16_t>(squares), rows, "X");
    }
    OneTrackVC& open(Track* track) {
        vc = std::make_unique<OneTrackVC>();
        vc->setTrackName(QString::fromStdString(track->name()));
        return *vc;
    }
    // The centre of a square in the scrolling area's content.
    static QPointF centreOf(int row, int square) { return TrackFramr::ffTrackSquare(row, square).center(); }
    // Renders through the real mix and hands the player's reports to the main thread.
    std::vector<int16_t> render(uint64_t frames) {
        std::vector<int16_t> left(frames), right(frames);
        AudioBufferList out{2, {{1, static_cast<uint32_t>(frames * 2), left.data()}, {1, static_cast<uint32_t>(frames * 2), right.data()}}};
        controller->renderOffline(static_cast<uint32_t>(frames), &out);
        mainThread.runPending();
        controller->pollForMessageResponses();
        return left;
    }

    Loop* hitLoop = nullptr;
    Loop* easyBeat = nullptr;
    std::unique_ptr<OneTrackVC> vc;
    int tracks = 0;
};
