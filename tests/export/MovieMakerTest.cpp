// Still-image movies: one picture shown for the whole captured audio.
#include <QPainter>
#include <QCoreApplication>
#include <QThread>

#include "MovieTestSupport.h"
#include "export/movie/MovieMaker.h"

namespace {

// Red above, blue below: a flipped or shifted picture shows.
QImage twoBands(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.fillRect(0, 0, width, height / 2, Qt::red);
    painter.fillRect(0, height / 2, width, height - height / 2, Qt::blue);
    return image;
}


QUrl makeMovie(MovieMaker& maker, std::vector<QImage> images, bool* onMainThread) {
    QUrl handed;
    bool done = false;
    maker.createMovieFromImages(std::move(images), [&](const QUrl& url) {
        handed = url;
        done = true;
        *onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
    });
    EXPECT_TRUE(processEventsUntil([&] { return done; }, 60));
    return handed;
}

}  // namespace

using MovieMakerTest = MovieTest;

TEST_F(MovieMakerTest, OneImageIsOneFrameAtZeroAndTheJoinedMovieLastsAsLongAsTheAudio) {
    QueueLog log;
    const int64_t audioFrames = 110250;  // 2.5 s
    writeNoiseWav(scratch("tempRecording.wav"), size_t(audioFrames), 3);

    // 250 is no multiple of 16 and 141 is odd: warned about, and made all the same.
    const VideoSettings settings = MovieMaker::videoSettingsWithCodec(kVideoCodecH264, 250, 141);
    EXPECT_TRUE(log.contains("Warning: video settings width must be divisible by 16."));
    MovieMaker maker(settings);
    EXPECT_EQ(maker.frameTime().value, audioFrames);
    EXPECT_EQ(maker.frameTime().timescale, 44100);
    bool onMain = false;
    const QUrl url = makeMovie(maker, {twoBands(250, 141)}, &onMain);
    EXPECT_EQ(url.toLocalFile().toStdString(), scratch("tempGlvid.mov"));
    EXPECT_TRUE(onMain);

    const std::vector<DecodedFrame> frames = decodeVideo(scratch("tempGlvid.mov"));
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].ticks(44100), 0);
    EXPECT_EQ(frames[0].image.size(), QSize(250, 142));
    EXPECT_GT(qRed(frames[0].image.pixel(125, 20)), 200);
    EXPECT_GT(qBlue(frames[0].image.pixel(125, 120)), 200);

    ASSERT_TRUE(joinScratchFiles());
    const ProbedMovie muxed = ffprobe(scratch("tempaudvid.mov"));
    ASSERT_NE(muxed.stream("video"), nullptr);
    ASSERT_NE(muxed.stream("audio"), nullptr);
    EXPECT_EQ(muxed.stream("video")->frames, 1);
    EXPECT_NEAR(muxed.stream("video")->duration, 2.5, 1e-3);
    EXPECT_NEAR(muxed.duration, 2.5, 1e-3);
}

TEST_F(MovieMakerTest, LaterImagesStartOneTickPerImageAfterTheAudio) {
    QueueLog log;
    writeNoiseWav(scratch("tempRecording.wav"), 22050, 5);  // 0.5 s
    MovieMaker maker(MovieMaker::videoSettingsWithCodec(kVideoCodecH264, 256, 144));
    EXPECT_FALSE(log.contains("Warning"));
    bool onMain = false;
    makeMovie(maker, {twoBands(256, 144), twoBands(256, 144), twoBands(256, 144)}, &onMain);

    const std::vector<DecodedFrame> frames = decodeVideo(scratch("tempGlvid.mov"));
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].ticks(44100), 0);
    EXPECT_EQ(frames[1].ticks(44100), 22050 + 1);
    EXPECT_EQ(frames[2].ticks(44100), 22050 + 2);
}
