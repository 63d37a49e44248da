#pragma once
// Makes "tempGlvid.mov" from still images: a track's video is one picture
// shown for as long as the captured audio "tempRecording.wav" lasts.
//
// Image 0 is shown from time zero; image i >= 1 from i ticks plus the audio's
// length (in the audio's own timescale), so the first image covers the whole
// audio. The last image lasts until the audio ends, or one tick when it starts
// later. Encoding runs on the serial queue "mediaInputQueue"; the completion
// arrives on the main thread.
#include <QImage>
#include <QUrl>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "export/movie/MediaTime.h"
#include "export/movie/PixelBuffer.h"

class MovieFileWriter;
class SerialQueue;

inline constexpr const char* kVideoCodecH264 = "avc1";

struct VideoSettings {
    std::string codec = kVideoCodecH264;
    int width = 0;
    int height = 0;
};

class MovieMaker {
public:
    static constexpr const char* kQueueName = "mediaInputQueue";
    // Receives the movie's URL.
    using Completion = std::function<void(const QUrl&)>;

    // Logs "Warning: video settings width must be divisible by 16." when the
    // width is not a multiple of 16, and goes on: the encoder takes any even size.
    static VideoSettings videoSettingsWithCodec(const std::string& codec, int width, int height);

    // Main thread. Deletes an existing "tempGlvid.mov", creates the writer
    // for it (on failure logs "Error: ..."), and reads the audio's length.
    explicit MovieMaker(const VideoSettings& settings);
    // Waits for a movie being made; its completion is then not called.
    ~MovieMaker();
    MovieMaker(const MovieMaker&) = delete;
    MovieMaker& operator=(const MovieMaker&) = delete;

    void createMovieFromImages(std::vector<QImage> images, Completion completion);

    // A frame of the settings' size with `image` drawn at its own size from the origin.
    PixelBuffer newPixelBufferFromCGImage(const QImage& image) const;

    const VideoSettings& videoSettings() const { return videoSettings_; }
    const QUrl& fileURL() const { return fileURL_; }
    // The length of "tempRecording.wav" (zero when it cannot be read).
    MediaTime frameTime() const { return frameTime_; }

private:
    VideoSettings videoSettings_;
    QUrl fileURL_;
    MediaTime frameTime_;
    Completion completionBlock_;
    std::shared_ptr<MovieFileWriter> assetWriter_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::unique_ptr<SerialQueue> queue_;  // last: waited for before the rest goes
};
