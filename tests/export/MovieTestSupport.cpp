#include "MovieTestSupport.h"

#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>
#include <chrono>
#include <fstream>
#include <mutex>

#include "export/movie/SerialQueue.h"
#include "library/media/Filer.h"
#include "library/util/Log.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

void ensureGuiApplication() {
    if (QCoreApplication::instance()) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    static int argc = 1;
    static char name[] = "test_export";
    static char* argv[] = {name, nullptr};
    new QGuiApplication(argc, argv);  // lives for the whole test program
}

bool processEventsUntil(const std::function<bool()>& done, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!done() && std::chrono::steady_clock::now() < end) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(1);
    }
    return done();
}

void MovieTest::SetUp() {
    ensureGuiApplication();
    ASSERT_TRUE(dir_.isValid());
    Filer::setTemporaryDirectory(dir_.path().toStdString());
}

void MovieTest::TearDown() {
    QCoreApplication::processEvents();
    Filer::setTemporaryDirectory("");
}

std::string MovieTest::scratch(const std::string& name) const { return QDir(dir_.path()).filePath(QString::fromStdString(name)).toStdString(); }

void JoinListener::audioAddedToVideo() {
    ++told;
    onMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
}

bool joinScratchFiles() {
    JoinListener joined;
    AudioToVideoAdder adder(&joined);
    adder.addAudioToVideo();
    return processEventsUntil([&] { return joined.told > 0; }, 60) && joined.onMainThread;
}

namespace {
std::mutex gLogMutex;
}

QueueLog::QueueLog() {
    quillo_log::setSink([this](const std::string& line) {
        std::lock_guard<std::mutex> lock(gLogMutex);
        lines_.push_back({line, SerialQueue::currentLabel()});
    });
}
QueueLog::~QueueLog() { quillo_log::setSink(nullptr); }

int QueueLog::indexOf(const std::string& text) const {
    std::lock_guard<std::mutex> lock(gLogMutex);
    for (size_t i = 0; i < lines_.size(); ++i) {
        if (lines_[i].text.find(text) != std::string::npos) return int(i);
    }
    return -1;
}
bool QueueLog::contains(const std::string& text) const { return indexOf(text) >= 0; }
std::string QueueLog::queueOf(const std::string& text) const {
    const int i = indexOf(text);
    std::lock_guard<std::mutex> lock(gLogMutex);
    return i < 0 ? std::string("(no such line)") : lines_[size_t(i)].queue;
}

std::vector<int16_t> noise(size_t count, uint32_t seed) {
    std::vector<int16_t> out(count);
    uint32_t x = seed * 2654435761u + 1;
    for (int16_t& s : out) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        s = int16_t(x & 0xffff);
    }
    return out;
}

void writeNoiseWav(const std::string& path, size_t frames, uint32_t seed) {
    writeStereoWav(path, noise(frames, seed), noise(frames, seed + 1));
}

const ProbedStream* ProbedMovie::stream(const std::string& type) const {
    for (const ProbedStream& s : streams) {
        if (s.type == type) return &s;
    }
    return nullptr;
}

ProbedMovie ffprobe(const std::string& path) {
    QProcess probe;
    probe.start("ffprobe", {"-v", "error", "-of", "json", "-show_format", "-show_streams", QString::fromStdString(path)});
    ProbedMovie movie;
    if (!probe.waitForFinished(60000) || probe.exitCode() != 0) {
        ADD_FAILURE() << "ffprobe failed on " << path << ": " << probe.readAllStandardError().toStdString();
        return movie;
    }
    const QJsonObject root = QJsonDocument::fromJson(probe.readAllStandardOutput()).object();
    const QJsonObject format = root["format"].toObject();
    movie.formatName = format["format_name"].toString().toStdString();
    movie.duration = format["duration"].toString().toDouble();
    for (const QJsonValue& v : root["streams"].toArray()) {
        const QJsonObject s = v.toObject();
        ProbedStream p;
        p.type = s["codec_type"].toString().toStdString();
        p.codec = s["codec_name"].toString().toStdString();
        p.pixelFormat = s["pix_fmt"].toString().toStdString();
        p.width = s["width"].toInt();
        p.height = s["height"].toInt();
        p.duration = s["duration"].toString().toDouble();
        p.frames = s["nb_frames"].toString().toLongLong();
        movie.streams.push_back(p);
    }
    return movie;
}

int64_t DecodedFrame::ticks(int scale) const {
    const int64_t num = pts * timeBaseNum * scale;
    return num % timeBaseDen == 0 ? num / timeBaseDen : -1;
}

namespace {

// An opened file and a decoder for its first stream of `type`.
struct Decoding {
    AVFormatContext* format = nullptr;
    AVCodecContext* codec = nullptr;
    int stream = -1;

    Decoding(const std::string& path, AVMediaType type) {
        if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0) return;
        avformat_find_stream_info(format, nullptr);
        const AVCodec* decoder = nullptr;
        stream = av_find_best_stream(format, type, -1, -1, &decoder, 0);
        if (stream < 0 || !decoder) return;
        codec = avcodec_alloc_context3(decoder);
        avcodec_parameters_to_context(codec, format->streams[stream]->codecpar);
        if (avcodec_open2(codec, decoder, nullptr) < 0) avcodec_free_context(&codec);
    }
    ~Decoding() {
        avcodec_free_context(&codec);
        avformat_close_input(&format);
    }
    bool ok() const { return codec != nullptr; }

    // Calls `use` for every decoded frame, flushing at the end.
    void run(const std::function<void(AVFrame*)>& use) {
        AVPacket* packet = av_packet_alloc();
        AVFrame* frame = av_frame_alloc();
        auto drain = [&] {
            while (avcodec_receive_frame(codec, frame) == 0) {
                use(frame);
                av_frame_unref(frame);
            }
        };
        while (av_read_frame(format, packet) >= 0) {
            if (packet->stream_index == stream) {
                avcodec_send_packet(codec, packet);
                drain();
            }
            av_packet_unref(packet);
        }
        avcodec_send_packet(codec, nullptr);
        drain();
        av_frame_free(&frame);
        av_packet_free(&packet);
    }
};

}  // namespace

std::vector<DecodedFrame> decodeVideo(const std::string& path) {
    std::vector<DecodedFrame> frames;
    Decoding d(path, AVMEDIA_TYPE_VIDEO);
    EXPECT_TRUE(d.ok()) << "no video in " << path;
    if (!d.ok()) return frames;
    const AVRational tb = d.format->streams[d.stream]->time_base;
    d.run([&](AVFrame* f) {
        DecodedFrame out;
        out.pts = f->best_effort_timestamp;
        out.timeBaseNum = tb.num;
        out.timeBaseDen = tb.den;
        // libswscale may write a little past a row's end: convert into a wider picture.
        QImage padded((f->width + 31) / 32 * 32, f->height + 1, QImage::Format_RGB32);
        SwsContext* sws = sws_getContext(f->width, f->height, AVPixelFormat(f->format), f->width, f->height,
                                         AV_PIX_FMT_RGB32, SWS_BILINEAR, nullptr, nullptr, nullptr);
        uint8_t* dst[1] = {padded.bits()};
        int dstStride[1] = {int(padded.bytesPerLine())};
        sws_scale(sws, f->data, f->linesize, 0, f->height, dst, dstStride);
        sws_freeContext(sws);
        out.image = padded.copy(0, 0, f->width, f->height);
        frames.push_back(std::move(out));
    });
    return frames;
}

std::vector<int16_t> decodeAudio(const std::string& path) {
    std::vector<int16_t> samples;
    Decoding d(path, AVMEDIA_TYPE_AUDIO);
    EXPECT_TRUE(d.ok()) << "no audio in " << path;
    if (!d.ok()) return samples;
    EXPECT_EQ(d.codec->sample_fmt, AV_SAMPLE_FMT_S16);
    d.run([&](AVFrame* f) {
        const auto* data = reinterpret_cast<const int16_t*>(f->data[0]);
        samples.insert(samples.end(), data, data + size_t(f->nb_samples) * size_t(f->ch_layout.nb_channels));
    });
    return samples;
}

std::vector<std::string> videoPackets(const std::string& path) {
    std::vector<std::string> packets;
    Decoding d(path, AVMEDIA_TYPE_VIDEO);
    if (d.stream < 0) return packets;
    AVPacket* packet = av_packet_alloc();
    while (av_read_frame(d.format, packet) >= 0) {
        if (packet->stream_index == d.stream) packets.emplace_back(reinterpret_cast<char*>(packet->data), size_t(packet->size));
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return packets;
}

int64_t boxOffset(const std::string& path, const std::string& type) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const size_t at = bytes.find(type);  // the box's own header comes before any chance match in its data
    return at == std::string::npos ? -1 : int64_t(at) - 4;
}
