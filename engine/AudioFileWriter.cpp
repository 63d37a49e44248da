#include "engine/AudioFileWriter.h"

#include <sndfile.h>

#include <chrono>
#include <cmath>
#include <cstring>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/log.h>
}

#include "engine/AudioFileLoaderOperation.h"
#include "library/util/Log.h"

namespace {

AudioError statusError(const char* message, int32_t status) {
    return AudioError{kAudioErrorOSStatusDomain, status, std::string(message) + " (error " + audioStatusText(status) + ")"};
}

inline int16_t floatToInt16(float x) QUILLO_NONBLOCKING {
    const float v = x * 32768.0f;
    if (v >= 32767.0f) return 32767;
    if (v <= -32768.0f) return -32768;
    return int16_t(v >= 0.0f ? int32_t(v + 0.5f) : -int32_t(-v + 0.5f));
}

// Client buffers -> interleaved int16 in the file's channel count. A mono
// file gets the average of left and right (exact when they are equal).
bool convertToFileFrames(const AudioStreamDescription& d, const AudioBufferList* audio, uint32_t frames,
                         uint32_t fileChannels, int16_t* out) QUILLO_NONBLOCKING {
    if (!audio || audio->mNumberBuffers == 0) return false;
    const bool isFloat = audioDescriptionIsFloat(d);
    const bool nonInterleaved = audioDescriptionIsNonInterleaved(d);
    const uint32_t ch = d.mChannelsPerFrame ? d.mChannelsPerFrame : 1;
    if (nonInterleaved && audio->mNumberBuffers < std::min<uint32_t>(ch, 2)) return false;
    for (uint32_t b = 0; b < audio->mNumberBuffers && b < 2; ++b)
        if (!audio->mBuffers[b].mData) return false;
    auto sample = [&](uint32_t c, uint32_t k) -> int16_t {
        c = std::min(c, ch - 1);
        if (isFloat) {
            const float* p = nonInterleaved ? static_cast<const float*>(audio->mBuffers[c].mData) + k
                                            : static_cast<const float*>(audio->mBuffers[0].mData) + size_t(k) * ch + c;
            return floatToInt16(*p);
        }
        return nonInterleaved ? static_cast<const int16_t*>(audio->mBuffers[c].mData)[k]
                              : static_cast<const int16_t*>(audio->mBuffers[0].mData)[size_t(k) * ch + c];
    };
    if (fileChannels == 1) {
        for (uint32_t k = 0; k < frames; ++k)
            out[k] = ch == 1 ? sample(0, k) : int16_t((int32_t(sample(0, k)) + int32_t(sample(1, k))) / 2);
    } else if (!isFloat && nonInterleaved && ch == 2) {
        const auto* l = static_cast<const int16_t*>(audio->mBuffers[0].mData);
        const auto* r = static_cast<const int16_t*>(audio->mBuffers[1].mData);
        for (uint32_t k = 0; k < frames; ++k) {
            out[2 * k] = l[k];
            out[2 * k + 1] = r[k];
        }
    } else {
        for (uint32_t k = 0; k < frames; ++k)
            for (uint32_t c = 0; c < fileChannels; ++c) out[size_t(k) * fileChannels + c] = sample(c, k);
    }
    return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// The open file

struct AudioFileWriter::Sink {
    virtual ~Sink() = default;
    virtual int32_t write(const int16_t* interleaved, uint32_t frames) = 0;
    virtual int32_t close() = 0;
};

namespace {

class SndfileSink : public AudioFileWriter::Sink {
public:
    SndfileSink(SNDFILE* file, uint32_t bitDepth, uint32_t channels)
        : file_(file), bitDepth_(bitDepth), channels_(channels) {}
    ~SndfileSink() override { close(); }

    int32_t write(const int16_t* frames, uint32_t count) override {
        if (!file_) return kAudioFileWriterNotWriting;
        sf_count_t done = 0;
        if (bitDepth_ == 16) {
            done = sf_writef_short(file_, frames, count);
        } else {
            // Other depths: the 16-bit samples in the top bits of an int.
            ints_.resize(size_t(count) * channels_);
            for (size_t i = 0; i < ints_.size(); ++i) ints_[i] = int32_t(frames[i]) * 65536;
            done = sf_writef_int(file_, ints_.data(), count);
        }
        if (done != sf_count_t(count)) return sf_error(file_) ? sf_error(file_) : SF_ERR_SYSTEM;
        return 0;
    }

    int32_t close() override {
        if (!file_) return 0;
        const int status = sf_close(file_);
        file_ = nullptr;
        return status;
    }

private:
    SNDFILE* file_;
    uint32_t bitDepth_, channels_;
    std::vector<int32_t> ints_;
};

// AAC in an MPEG-4 (.m4a) file through FFmpeg's own encoder.
class AacSink : public AudioFileWriter::Sink {
public:
    ~AacSink() override {
        if (format_) close();
    }

    int32_t open(const std::string& path, int rate, int channels, std::string* stage) {
        av_log_set_level(AV_LOG_ERROR);
        *stage = "Couldn't prepare the output format";
        int err = avformat_alloc_output_context2(&format_, nullptr, "ipod", path.c_str());
        if (err < 0 || !format_) return err < 0 ? err : AVERROR_UNKNOWN;
        const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
        if (!codec) return AVERROR_ENCODER_NOT_FOUND;
        stream_ = avformat_new_stream(format_, nullptr);
        encoder_ = avcodec_alloc_context3(codec);
        if (!stream_ || !encoder_) return AVERROR(ENOMEM);
        encoder_->sample_fmt = AV_SAMPLE_FMT_FLTP;
        encoder_->sample_rate = rate;
        av_channel_layout_default(&encoder_->ch_layout, channels);
        encoder_->bit_rate = channels > 1 ? 128000 : 64000;
        encoder_->time_base = AVRational{1, rate};
        if (format_->oformat->flags & AVFMT_GLOBALHEADER) encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        *stage = "Couldn't set audio codec";
        if ((err = avcodec_open2(encoder_, codec, nullptr)) < 0) return err;
        if ((err = avcodec_parameters_from_context(stream_->codecpar, encoder_)) < 0) return err;
        stream_->time_base = encoder_->time_base;
        *stage = "Couldn't open the output file";
        if ((err = avio_open(&format_->pb, path.c_str(), AVIO_FLAG_WRITE)) < 0) return err;
        if ((err = avformat_write_header(format_, nullptr)) < 0) return err;
        frame_ = av_frame_alloc();
        packet_ = av_packet_alloc();
        if (!frame_ || !packet_) return AVERROR(ENOMEM);
        channels_ = channels;
        frameSize_ = encoder_->frame_size > 0 ? encoder_->frame_size : 1024;
        pending_.resize(size_t(channels));
        headerWritten_ = true;
        return 0;
    }

    int32_t write(const int16_t* frames, uint32_t count) override {
        for (uint32_t k = 0; k < count; ++k)
            for (int c = 0; c < channels_; ++c) pending_[size_t(c)].push_back(float(frames[size_t(k) * channels_ + c]) / 32768.0f);
        while (pending_[0].size() >= size_t(frameSize_)) {
            if (int err = encode(frameSize_)) return err;
        }
        return 0;
    }

    int32_t close() override {
        int32_t result = 0;
        if (headerWritten_) {
            if (!pending_.empty() && !pending_[0].empty()) result = encode(int(pending_[0].size()));
            if (!result) result = sendAndDrain(nullptr);
            const int trailer = av_write_trailer(format_);
            if (!result) result = trailer;
        }
        if (format_ && format_->pb) avio_closep(&format_->pb);
        av_frame_free(&frame_);
        av_packet_free(&packet_);
        avcodec_free_context(&encoder_);
        avformat_free_context(format_);
        format_ = nullptr;
        headerWritten_ = false;
        return result;
    }

private:
    int encode(int samples) {
        av_frame_unref(frame_);
        frame_->nb_samples = samples;
        frame_->format = AV_SAMPLE_FMT_FLTP;
        frame_->sample_rate = encoder_->sample_rate;
        if (int err = av_channel_layout_copy(&frame_->ch_layout, &encoder_->ch_layout)) return err;
        if (int err = av_frame_get_buffer(frame_, 0)) return err;
        for (int c = 0; c < channels_; ++c) {
            auto& p = pending_[size_t(c)];
            std::memcpy(frame_->data[c], p.data(), size_t(samples) * sizeof(float));
            p.erase(p.begin(), p.begin() + samples);
        }
        frame_->pts = pts_;
        pts_ += samples;
        return sendAndDrain(frame_);
    }

    int sendAndDrain(AVFrame* frame) {
        int err = avcodec_send_frame(encoder_, frame);
        if (err < 0) return err;
        for (;;) {
            err = avcodec_receive_packet(encoder_, packet_);
            if (err == AVERROR(EAGAIN) || err == AVERROR_EOF) return 0;
            if (err < 0) return err;
            av_packet_rescale_ts(packet_, encoder_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            err = av_interleaved_write_frame(format_, packet_);
            if (err < 0) return err;
        }
    }

    AVFormatContext* format_ = nullptr;
    AVStream* stream_ = nullptr;
    AVCodecContext* encoder_ = nullptr;
    AVFrame* frame_ = nullptr;
    AVPacket* packet_ = nullptr;
    int channels_ = 2;
    int frameSize_ = 1024;
    int64_t pts_ = 0;
    bool headerWritten_ = false;
    std::vector<std::vector<float>> pending_;
};

}  // namespace

// ---------------------------------------------------------------------------

AudioFileWriter::AudioFileWriter(const AudioStreamDescription& clientDescription) : client_(clientDescription) {}

AudioFileWriter::~AudioFileWriter() { finishWriting(); }

bool AudioFileWriter::AACEncodingAvailable() { return avcodec_find_encoder(AV_CODEC_ID_AAC) != nullptr; }

bool AudioFileWriter::beginWritingToFileAtPath(const std::string& path, uint32_t fileType, AudioError* error) {
    return beginWritingToFileAtPath(path, fileType, 16, 0, error);
}

bool AudioFileWriter::beginWritingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth,
                                               AudioError* error) {
    return beginWritingToFileAtPath(path, fileType, bitDepth, 0, error);
}

bool AudioFileWriter::beginWritingToFileAtPath(const std::string& path, uint32_t fileType, uint32_t bitDepth,
                                               uint32_t channels, AudioError* error) {
    finishWriting();
    if (channels == 0) channels = client_.mChannelsPerFrame;
    const int rate = int(std::lround(client_.mSampleRate));

    // The client format must be one we convert from.
    const bool clientOk = client_.mFormatID == kAudioFormatLinearPCM && client_.mChannelsPerFrame >= 1 &&
                          client_.mChannelsPerFrame <= 2 && rate > 0 &&
                          ((audioDescriptionIsFloat(client_) && client_.mBitsPerChannel == 32) ||
                           (!audioDescriptionIsFloat(client_) && client_.mBitsPerChannel == 16));

    std::unique_ptr<Sink> sink;
    if (fileType == kAudioFileM4AType) {
        if (!AACEncodingAvailable()) {
            if (error) *error = AudioError{kAudioFileWriterErrorDomain, 0, "AAC Encoding not available"};
            return false;
        }
        if (channels < 1 || channels > 2) {
            if (error) *error = statusError("Couldn't prepare the output format", int32_t(audioFourCC("fmt?")));
            return false;
        }
        auto aac = std::make_unique<AacSink>();
        std::string stage;
        if (int err = aac->open(path, rate, int(channels), &stage)) {
            QUILLO_CHECK_RESULT(err, "AAC writer set-up");
            if (error) *error = statusError(stage.c_str(), err);
            return false;
        }
        sink = std::move(aac);
    } else {
        int format = 0;
        if (fileType == kAudioFileAIFFType) format = SF_FORMAT_AIFF;
        else if (fileType == kAudioFileWAVEType) format = SF_FORMAT_WAV;
        switch (bitDepth) {
            case 8: format |= fileType == kAudioFileWAVEType ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_S8; break;
            case 16: format |= SF_FORMAT_PCM_16; break;
            case 24: format |= SF_FORMAT_PCM_24; break;
            case 32: format |= SF_FORMAT_PCM_32; break;
            default: format = 0; break;
        }
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = int(channels);
        info.format = format;
        const int32_t typeError = int32_t(audioFourCC("typ?"));
        if (!format || channels < 1 || channels > 2 || !sf_format_check(&info)) {
            QUILLO_CHECK_RESULT(typeError, "sf_open(SFM_WRITE)");
            if (error) *error = statusError("Couldn't open the output file", typeError);
            return false;
        }
        SNDFILE* file = clientOk ? sf_open(path.c_str(), SFM_WRITE, &info) : nullptr;
        if (clientOk && !file) {
            const int status = sf_error(nullptr) ? sf_error(nullptr) : SF_ERR_SYSTEM;
            QUILLO_CHECK_RESULT(status, "sf_open(SFM_WRITE)");
            if (error) *error = statusError("Couldn't open the output file", status);
            return false;
        }
        if (file) sink = std::make_unique<SndfileSink>(file, bitDepth, channels);
    }
    if (!clientOk) {
        const int32_t status = int32_t(audioFourCC("fmt?"));
        QUILLO_CHECK_RESULT(status, "client data format");
        if (sink) sink->close();
        if (error) *error = statusError("Couldn't configure the converter", status);
        return false;
    }

    fileChannels_ = channels;
    if (!ring_.valid() || ring_.length() < int32_t(kRingSeconds * 44100 * 2 * sizeof(int16_t))) {
        if (!ring_.init(int32_t(kRingSeconds * 44100 * 2 * sizeof(int16_t)))) {
            sink->close();
            if (error) *error = AudioError{kAudioErrorOSStatusDomain, 12, "Not enough memory to open file"};
            return false;
        }
    }
    ring_.clear();
    failedStatus_.store(0);
    failing_ = false;
    sink_ = std::move(sink);
    path_ = path;
    stopWriterThread_.store(false);
    writing_.store(true, std::memory_order_release);
    writerThread_ = std::thread([this] { writerThreadMain(); });
    return true;
}

void AudioFileWriter::writerThreadMain() {
    while (!stopWriterThread_.load(std::memory_order_acquire)) {
        {
            std::lock_guard<std::mutex> lock(sinkMutex_);
            drainRing();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void AudioFileWriter::drainRing() {
    int32_t avail = 0;
    const auto* frames = static_cast<const int16_t*>(ring_.tail(&avail));
    const int32_t frameBytes = int32_t(fileChannels_ * sizeof(int16_t));
    const uint32_t count = uint32_t(avail / frameBytes);
    if (!frames || count == 0 || !sink_) return;
    if (int32_t err = sink_->write(frames, count)) {
        QUILLO_CHECK_RESULT(err, "ExtAudioFileWriteAsync");
        if (!failing_) failedStatus_.store(err);  // told once per run of failures
        failing_ = true;
    } else {
        failing_ = false;
    }
    ring_.consume(int32_t(count) * frameBytes);
}

void AudioFileWriter::finishWriting() {
    if (!writing_.exchange(false)) return;
    stopWriterThread_.store(true);
    if (writerThread_.joinable()) writerThread_.join();
    std::lock_guard<std::mutex> lock(sinkMutex_);
    drainRing();
    if (sink_) QUILLO_CHECK_RESULT(sink_->close(), "AudioFileClose");
    sink_.reset();
}

int32_t AudioFileWriter::addAudio(const AudioBufferList* audio, uint32_t frames) {
    if (!writing_.load(std::memory_order_acquire)) return kAudioFileWriterNotWriting;
    if (frames == 0) return 0;
    const int32_t bytes = int32_t(frames * fileChannels_ * sizeof(int16_t));
    int32_t space = 0;
    void* head = ring_.head(&space);
    if (!head || space < bytes) return kAudioFileWriterRingFull;
    if (!convertToFileFrames(client_, audio, frames, fileChannels_, static_cast<int16_t*>(head)))
        return kAudioFileWriterBadBuffers;
    ring_.produce(bytes);
    // Taken; but an earlier write to the file failed since the last append.
    return failedStatus_.exchange(0, std::memory_order_relaxed);
}

int32_t AudioFileWriter::addAudioSynchronously(const AudioBufferList* audio, uint32_t frames) {
    if (!writing()) return kAudioFileWriterNotWriting;
    std::vector<int16_t> converted(size_t(frames) * fileChannels_);
    if (!convertToFileFrames(client_, audio, frames, fileChannels_, converted.data())) return kAudioFileWriterBadBuffers;
    std::lock_guard<std::mutex> lock(sinkMutex_);
    drainRing();  // what came before, first
    if (!sink_) return kAudioFileWriterNotWriting;
    return frames ? sink_->write(converted.data(), frames) : 0;
}

int32_t AudioFileWriterAddAudio(AudioFileWriter* writer, const AudioBufferList* audio, uint32_t frames) {
    return writer ? writer->addAudio(audio, frames) : kAudioFileWriterNotWriting;
}

int32_t AudioFileWriterAddAudioSynchronously(AudioFileWriter* writer, const AudioBufferList* audio, uint32_t frames) {
    return writer ? writer->addAudioSynchronously(audio, frames) : kAudioFileWriterNotWriting;
}
