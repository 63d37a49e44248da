// Filming: the frame times of the writer (with a clock the test drives), a
// live QML grid filmed in real time and joined with its audio, and the ends
// of a filming that is dropped or cannot be written.
#include <QCoreApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QThread>
#include <atomic>
#include <cmath>
#include <cstdio>

#include "MovieTestSupport.h"
#include "export/movie/MovieClock.h"
#include "export/movie/ViewRecorder.h"
#include "library/media/Filer.h"

namespace {

// Time moves only when the writer sleeps: each sleep lasts its interval plus
// a fixed writing delay. Binary fractions keep the arithmetic exact.
class SteppedClock final : public MovieClock {
public:
    explicit SteppedClock(double delay) : delay_(delay) {}
    double now() override { return t_.load(); }
    void sleepFor(double seconds) override { t_.store(t_.load() + seconds + delay_); }
    std::atomic<double> t_{1000.0};

private:
    double delay_;
};

struct Progress final : ViewRecorderAssetWriterDelegate {
    std::vector<float> fractions;
    bool allOnMainThread = true;
    void percentComplete(float fraction) override {
        fractions.push_back(fraction);
        allOnMainThread = allOnMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
    }
};

QImage solid(QColor color) {
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

bool near(QRgb a, QColor b) {
    return std::abs(qRed(a) - b.red()) < 16 && std::abs(qGreen(a) - b.green()) < 16 && std::abs(qBlue(a) - b.blue()) < 16;
}

// How many frames differ visibly from the one before.
int changes(const std::vector<DecodedFrame>& frames) {
    int n = 0;
    for (size_t i = 1; i < frames.size(); ++i) {
        const QImage& a = frames[i - 1].image;
        const QImage& b = frames[i].image;
        int differing = 0;
        for (int y = 0; y < a.height(); y += 4) {
            for (int x = 0; x < a.width(); x += 4) {
                if (std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 40) ++differing;
            }
        }
        if (differing > 20) ++n;
    }
    return n;
}

}  // namespace

using ViewRecorderTest = MovieTest;

TEST_F(ViewRecorderTest, WritesEverySnapshotAtElapsedTimeTimesFiveSixthsAfterTheFirstAtZero) {
    QueueLog log;
    SteppedClock clock(1.0 / 128);
    Progress progress;
    auto writer = ViewRecorderAssetWriter::create(QSizeF(64, 48), 120.0f, &progress, clock);
    const std::vector<QColor> colors = {Qt::red, Qt::green, Qt::blue, Qt::white, Qt::yellow, Qt::magenta};
    for (const QColor& c : colors) writer->writeFrameWithImage(solid(c));
    writer->startDate = 1000.0;
    writer->endDate = 1000.375;  // six frames in 0.375 s: one every 0.0625 s

    bool done = false;
    QUrl handed("file:///not-null");
    bool completionOnMain = false;
    writer->writeVideoFromImageFrames([&](const QUrl& url) {
        done = true;
        handed = url;
        completionOnMain = QThread::currentThread() == QCoreApplication::instance()->thread();
    });
    ASSERT_TRUE(processEventsUntil([&] { return done; }, 60));
    EXPECT_TRUE(handed.isEmpty());
    EXPECT_TRUE(completionOnMain);

    // Frame k >= 1 is written after k sleeps of 0.0625 + 1/128 s:
    // truncate(k x 0.0703125 x 500) ticks of 1/600 s. Rounding instead of
    // truncating would give 141, 176, 211.
    const std::vector<DecodedFrame> frames = decodeVideo(scratch("tempGlvid.mov"));
    ASSERT_EQ(frames.size(), 7u);
    const std::vector<int64_t> ticks = {0, 35, 70, 105, 140, 175, 210};
    for (size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].ticks(600), ticks[i]) << "frame " << i;
        const QColor expected = colors[i == 0 ? 0 : i - 1];  // the first snapshot twice
        EXPECT_TRUE(near(frames[i].image.pixel(32, 24), expected)) << "frame " << i;
    }
    // The last frame lasts until the writer finishes, after one more sleep.
    const ProbedMovie movie = ffprobe(scratch("tempGlvid.mov"));
    ASSERT_NE(movie.stream("video"), nullptr);
    EXPECT_NEAR(movie.stream("video")->duration, 246.0 / 600, 1e-3);
    EXPECT_EQ(movie.stream("video")->codec, "h264");
    EXPECT_EQ(movie.stream("video")->pixelFormat, "yuv420p");
    EXPECT_NE(movie.formatName.find("mov"), std::string::npos);

    ASSERT_TRUE(processEventsUntil([&] { return progress.fractions.size() == 7; }, 10));
    EXPECT_EQ(progress.fractions, (std::vector<float>{1 / 6.f, 2 / 6.f, 3 / 6.f, 4 / 6.f, 5 / 6.f, 1.f, 1.f}));
    EXPECT_TRUE(progress.allOnMainThread);

    EXPECT_EQ(log.queueOf("markAsFinished"), "viewrecorder.asset.writer.queue");
    EXPECT_LT(log.indexOf("OUTPUT: " + scratch("tempGlvid.mov")), log.indexOf("markAsFinished"));
    EXPECT_LT(log.indexOf("markAsFinished"), log.indexOf("finishWritingWithCompletionHandler"));
    EXPECT_FALSE(log.contains("Failed to write image"));
}

namespace {

// Four tiles whose scale flips on timers of their own, like a loop's
// instruments shrinking as they play.
const char* kPulsingGrid = R"(
import QtQuick
Item {
    width: 192; height: 192
    Grid {
        columns: 2
        Repeater {
            model: 4
            Rectangle {
                width: 96; height: 96
                color: ["#d04040", "#40a040", "#4060d0", "#d0b030"][index]
                property bool small: false
                scale: small ? 0.6 : 1.0
                Timer { interval: 110 + index * 45; running: true; repeat: true; onTriggered: parent.small = !parent.small }
            }
        }
    }
}
)";

// The grid in an offscreen window, as the export screen shows it.
struct PulsingGrid {
    QQuickWindow window;
    QQmlEngine engine;
    std::unique_ptr<QQuickItem> item;
    PulsingGrid() {
        window.resize(240, 320);
        QQmlComponent component(&engine);
        component.setData(kPulsingGrid, QUrl());
        item.reset(qobject_cast<QQuickItem*>(component.create()));
        EXPECT_TRUE(item) << component.errorString().toStdString();
        if (!item) return;
        item->setParentItem(window.contentItem());
        item->setPosition(QPointF(24, 40));
        window.show();
    }
};


}  // namespace

TEST_F(ViewRecorderTest, FilmsALiveGridForFourSecondsAndJoinsItWithItsAudio) {
    QueueLog log;
    PulsingGrid grid;
    ASSERT_TRUE(grid.item);

    Progress progress;
    ViewRecorder recorder(QSizeF(192, 192), 95.0f, &progress);
    bool done = false;
    recorder.startRecordingView(grid.item.get(), [&](const QUrl&) { done = true; });
    EXPECT_TRUE(log.contains("writer.startDate"));
    processEventsUntil([] { return false; }, 4.0);
    recorder.stop();
    const double filmed = recorder.writer->endDate - recorder.writer->startDate;
    ASSERT_TRUE(processEventsUntil([&] { return done; }, 120));

    const std::vector<DecodedFrame> frames = decodeVideo(scratch("tempGlvid.mov"));
    const double snapshots = double(frames.size()) - 1;  // the first is written twice
    EXPECT_GE(snapshots, 50);  // about 80; a busy machine delays some ticks
    EXPECT_LE(snapshots, 82);
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames[0].image.size(), QSize(192, 192));
    EXPECT_GT(changes(frames), 10) << "the tiles pulse, so the frames must differ";

    // Each frame waits one filming interval: at least (n + 1) intervals of
    // real time, scaled by 5/6, plus whatever the writing itself took.
    const ProbedMovie movie = ffprobe(scratch("tempGlvid.mov"));
    const double paced = (snapshots + 1) * (filmed / snapshots) * 5.0 / 6.0;
    std::printf("filmed %.3f s: %.0f snapshots, %d changes, movie %.3f s (paced %.3f s)\n", filmed, snapshots,
                changes(frames), movie.duration, paced);
    EXPECT_GE(movie.duration, paced - 0.01);
    EXPECT_LE(movie.duration, paced + 4.0);
    EXPECT_FALSE(progress.fractions.empty());

    // The captured audio, four seconds of it, joined with the movie.
    writeNoiseWav(scratch("tempRecording.wav"), 4 * 44100, 7);
    ASSERT_TRUE(joinScratchFiles());
    const ProbedMovie muxed = ffprobe(scratch("tempaudvid.mov"));
    ASSERT_NE(muxed.stream("audio"), nullptr);
    ASSERT_NE(muxed.stream("video"), nullptr);
    EXPECT_NEAR(muxed.stream("audio")->duration, 4.0, 1e-3);
    EXPECT_NEAR(muxed.stream("video")->duration, movie.duration, 2e-3);
    EXPECT_NEAR(muxed.duration, std::max(4.0, movie.duration), 2e-3);
}

TEST_F(ViewRecorderTest, ARecorderDroppedWhileItsMovieIsWrittenHearsNothingMore) {
    QueueLog log;
    PulsingGrid grid;
    ASSERT_TRUE(grid.item);
    Progress progress;
    bool completed = false;
    auto recorder = std::make_unique<ViewRecorder>(QSizeF(192, 192), 95.0f, &progress);
    recorder->startRecordingView(grid.item.get(), [&](const QUrl&) { completed = true; });
    processEventsUntil([] { return false; }, 0.5);
    recorder->stop();
    recorder.reset();  // the export screen cancelled
    ASSERT_TRUE(processEventsUntil([&] { return log.contains("finishWritingWithCompletionHandler"); }, 60));
    processEventsUntil([] { return false; }, 0.2);
    EXPECT_FALSE(completed);
    EXPECT_TRUE(progress.fractions.empty());
    EXPECT_GT(decodeVideo(scratch("tempGlvid.mov")).size(), 5u) << "the writing itself finishes";
}

TEST_F(ViewRecorderTest, AMovieThatCannotBeCreatedStillReportsItsEnd) {
    QueueLog log;
    Filer::setTemporaryDirectory("/dev/null/quillo");  // no folder can be made there
    SteppedClock clock(0);
    Progress progress;
    auto writer = ViewRecorderAssetWriter::create(QSizeF(64, 48), 120.0f, &progress, clock);
    for (int i = 0; i < 3; ++i) writer->writeFrameWithImage(solid(Qt::red));
    writer->startDate = 1000.0;
    writer->endDate = 1000.15;
    bool done = false;
    writer->writeVideoFromImageFrames([&](const QUrl&) { done = true; });
    ASSERT_TRUE(processEventsUntil([&] { return done; }, 30));
    EXPECT_TRUE(log.contains("Error: cannot open"));
    EXPECT_TRUE(log.contains("Input error"));
    EXPECT_TRUE(log.contains("finishWritingWithCompletionHandler"));
    EXPECT_EQ(progress.fractions, std::vector<float>{1.f});
}
