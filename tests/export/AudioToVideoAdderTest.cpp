// Joining the captured audio with the scratch movie, both copied as they are.
#include <QFile>
#include <QCoreApplication>
#include <QThread>

#include "MovieTestSupport.h"
#include "export/movie/encoder/MovieFileWriter.h"

namespace {


// A movie of `seconds` at ten frames per second, each frame a different grey.
void writeMovie(const std::string& path, double seconds) {
    MovieWriterSettings settings;
    settings.width = 96;
    settings.height = 64;
    std::string error;
    auto writer = MovieFileWriter::create(path, settings, &error);
    ASSERT_TRUE(writer) << error;
    ASSERT_TRUE(writer->startWriting());
    QImage image(96, 64, QImage::Format_RGB32);
    const int frames = int(seconds * 10);
    for (int i = 0; i < frames; ++i) {
        image.fill(QColor(i * 7 % 256, 128, 255 - i * 5 % 256));
        ASSERT_TRUE(writer->appendFrame({image.constBits(), 96, 64, int(image.bytesPerLine())}, MediaTime::make(i * 60, 600)))
            << writer->error();
    }
    ASSERT_TRUE(writer->finishWriting(MediaTime::make(frames * 60, 600))) << writer->error();
}

}  // namespace

using AudioToVideoAdderTest = MovieTest;

TEST_F(AudioToVideoAdderTest, CopiesBothTracksFromZeroEachAtItsOwnLength) {
    struct Case {
        double audioSeconds, videoSeconds;
    };
    for (Case c : {Case{3.0, 1.0}, Case{0.5, 2.0}}) {
        SCOPED_TRACE(testing::Message() << "audio " << c.audioSeconds << " s, video " << c.videoSeconds << " s");
        QueueLog log;
        writeNoiseWav(scratch("tempRecording.wav"), size_t(c.audioSeconds * 44100), 11);
        writeMovie(scratch("tempGlvid.mov"), c.videoSeconds);

        JoinListener joined;
        AudioToVideoAdder adder(&joined);
        adder.addAudioToVideo();
        ASSERT_TRUE(processEventsUntil([&] { return joined.told > 0; }, 60));
        EXPECT_TRUE(joined.onMainThread);
        EXPECT_TRUE(log.contains("video exist at path " + scratch("tempGlvid.mov") + " = 1"));

        const std::string muxed = scratch("tempaudvid.mov");
        EXPECT_EQ(decodeAudio(muxed), readWav(scratch("tempRecording.wav")).samples);
        EXPECT_EQ(videoPackets(muxed), videoPackets(scratch("tempGlvid.mov")));
        const ProbedMovie movie = ffprobe(muxed);
        ASSERT_NE(movie.stream("audio"), nullptr);
        ASSERT_NE(movie.stream("video"), nullptr);
        EXPECT_EQ(movie.stream("audio")->codec, "pcm_s16le");
        EXPECT_NEAR(movie.stream("audio")->duration, c.audioSeconds, 1e-3);
        EXPECT_NEAR(movie.stream("video")->duration, c.videoSeconds, 1e-3);
        EXPECT_NEAR(movie.duration, std::max(c.audioSeconds, c.videoSeconds), 1e-3);
        const std::vector<DecodedFrame> frames = decodeVideo(muxed);
        ASSERT_FALSE(frames.empty());
        EXPECT_EQ(frames[0].ticks(600), 0);
        // The index comes first, so players can start before the whole file is read.
        EXPECT_GE(boxOffset(muxed, "moov"), 0);
        EXPECT_LT(boxOffset(muxed, "moov"), boxOffset(muxed, "mdat"));
    }
}

TEST_F(AudioToVideoAdderTest, WithoutAMovieStopsBeforeTouchingTheLastResultAndTellsNobody) {
    QueueLog log;
    writeNoiseWav(scratch("tempRecording.wav"), 44100, 2);
    {
        QFile stale(QString::fromStdString(scratch("tempaudvid.mov")));
        ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
        stale.write("earlier movie");
    }
    JoinListener joined;
    AudioToVideoAdder adder(&joined);
    adder.addAudioToVideo();
    ASSERT_TRUE(processEventsUntil([&] { return log.contains("video exist at path"); }, 30));
    EXPECT_TRUE(log.contains("video exist at path " + scratch("tempGlvid.mov") + " = 0"));
    processEventsUntil([&] { return joined.told > 0; }, 1.0);
    EXPECT_EQ(joined.told, 0);
    QFile stale(QString::fromStdString(scratch("tempaudvid.mov")));
    ASSERT_TRUE(stale.open(QIODevice::ReadOnly));
    EXPECT_EQ(stale.readAll(), QByteArray("earlier movie"));
}
