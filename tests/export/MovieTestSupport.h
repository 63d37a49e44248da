#pragma once
// Shared by the movie tests: a Qt application on the offscreen platform, a
// private temporary folder, WAV files, and real movies examined from outside
// (ffprobe) and decoded back (libavformat, libavcodec).
#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "export/movie/AudioToVideoAdder.h"
#include "tests/recording/RecordingTestSupport.h"

// The offscreen Qt application every movie test runs in (created once).
void ensureGuiApplication();
// Runs the main thread's events until `done` or `seconds` pass; returns done().
bool processEventsUntil(const std::function<bool()>& done, double seconds);

// Each test gets its own temporary folder for the scratch files.
class MovieTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    std::string scratch(const std::string& name) const;
    QTemporaryDir dir_;
};

// Hears when the audio was joined with the movie, and on which thread.
struct JoinListener final : AudioToVideoAdderDelegate {
    int told = 0;
    bool onMainThread = false;
    void audioAddedToVideo() override;
};
// Joins the scratch audio and movie as the export does; false when nobody was told.
bool joinScratchFiles();

// Log lines with the label of the serial queue that wrote each (empty: not on one).
class QueueLog {
public:
    QueueLog();
    ~QueueLog();
    bool contains(const std::string& text) const;
    std::string queueOf(const std::string& text) const;  // of the first line containing text
    int indexOf(const std::string& text) const;          // -1 when absent

private:
    struct Line {
        std::string text, queue;
    };
    std::vector<Line> lines_;
};

// Deterministic noise: every sample differs from its neighbours.
std::vector<int16_t> noise(size_t count, uint32_t seed);
// A stereo 16-bit 44.1 kHz WAV of `frames` frames of noise.
void writeNoiseWav(const std::string& path, size_t frames, uint32_t seed);

struct ProbedStream {
    std::string type, codec, pixelFormat;
    int width = 0, height = 0;
    double duration = 0.0;
    int64_t frames = 0;
};
struct ProbedMovie {
    std::string formatName;
    double duration = 0.0;
    std::vector<ProbedStream> streams;
    const ProbedStream* stream(const std::string& type) const;
};
// `ffprobe -show_format -show_streams` of the file.
ProbedMovie ffprobe(const std::string& path);

struct DecodedFrame {
    int64_t pts = 0;
    int timeBaseNum = 1, timeBaseDen = 1;
    QImage image;  // Format_RGB32
    // The start time in ticks of 1/scale s; -1 when it falls between ticks.
    int64_t ticks(int scale) const;
    double seconds() const { return double(pts) * timeBaseNum / timeBaseDen; }
};
std::vector<DecodedFrame> decodeVideo(const std::string& path);
// The first audio track decoded to interleaved 16-bit samples.
std::vector<int16_t> decodeAudio(const std::string& path);
// The compressed video samples as stored, in order.
std::vector<std::string> videoPackets(const std::string& path);
// Where a box ("moov", "mdat") of a QuickTime file starts; -1 when absent.
int64_t boxOffset(const std::string& path, const std::string& type);
