#include "export/movie/encoder/MovieFileWriter.h"

#include <limits>

#include "export/movie/encoder/FfmpegSupport.h"

extern "C" {
#include <libavutil/opt.h>
}

namespace {

int evenAtLeastTwo(int n) {
    if (n < 2) return 2;
    return n % 2 ? n + 1 : n;
}

}  // namespace

struct MovieFileWriter::Impl {
    MovieWriterSettings settings;
    ffmpeg::OutputPtr output;
    AVStream* stream = nullptr;
    ffmpeg::CodecContextPtr codec;
    ffmpeg::FramePtr picture;
    SwsContext* scaler = nullptr;  // cached for the last source size
    ffmpeg::PacketPtr received = ffmpeg::makePacket();
    ffmpeg::PacketPtr pending = ffmpeg::makePacket();  // held back until its duration is known
    bool hasPending = false;
    int64_t lastPts = std::numeric_limits<int64_t>::min();

    ~Impl() { sws_freeContext(scaler); }
};

std::unique_ptr<MovieFileWriter> MovieFileWriter::create(const std::string& path, const MovieWriterSettings& wanted,
                                                         std::string* error) {
    auto impl = std::make_unique<Impl>();
    impl->settings = wanted;
    impl->settings.width = evenAtLeastTwo(wanted.width);
    impl->settings.height = evenAtLeastTwo(wanted.height);
    if (impl->settings.timescale <= 0) impl->settings.timescale = 600;

    const AVCodec* h264 = avcodec_find_encoder_by_name("libx264");
    if (!h264) {
        *error = "the H.264 encoder (libx264) is not available";
        return nullptr;
    }
    impl->output = ffmpeg::openMovOutput(path, error);
    if (!impl->output) return nullptr;

    impl->codec.reset(avcodec_alloc_context3(h264));
    AVCodecContext* c = impl->codec.get();
    c->width = impl->settings.width;
    c->height = impl->settings.height;
    c->pix_fmt = AV_PIX_FMT_YUV420P;
    c->time_base = AVRational{1, impl->settings.timescale};
    c->max_b_frames = 0;
    c->gop_size = 60;
    c->thread_count = impl->settings.threads;
    // What libswscale produces from RGB by default: BT.601, limited range.
    c->color_range = AVCOL_RANGE_MPEG;
    c->colorspace = AVCOL_SPC_SMPTE170M;
    c->color_primaries = AVCOL_PRI_SMPTE170M;
    c->color_trc = AVCOL_TRC_SMPTE170M;
    if (impl->output->oformat->flags & AVFMT_GLOBALHEADER) c->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_opt_set(c->priv_data, "preset", "veryfast", 0);
    av_opt_set(c->priv_data, "crf", "20", 0);
    int rc = avcodec_open2(c, h264, nullptr);
    if (rc < 0) {
        *error = ffmpeg::errorText("cannot open the H.264 encoder", rc);
        return nullptr;
    }

    impl->stream = avformat_new_stream(impl->output.get(), nullptr);
    if (!impl->stream) {
        *error = "cannot add a video track";
        return nullptr;
    }
    impl->stream->time_base = c->time_base;
    rc = avcodec_parameters_from_context(impl->stream->codecpar, c);
    if (rc < 0) {
        *error = ffmpeg::errorText("cannot describe the video track", rc);
        return nullptr;
    }

    impl->picture = ffmpeg::makeFrame();
    impl->picture->format = c->pix_fmt;
    impl->picture->width = c->width;
    impl->picture->height = c->height;
    rc = av_frame_get_buffer(impl->picture.get(), 0);
    if (rc < 0) {
        *error = ffmpeg::errorText("cannot allocate a picture", rc);
        return nullptr;
    }
    return std::unique_ptr<MovieFileWriter>(new MovieFileWriter(std::move(impl)));
}

MovieFileWriter::MovieFileWriter(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
MovieFileWriter::~MovieFileWriter() = default;

int MovieFileWriter::width() const { return impl_->settings.width; }
int MovieFileWriter::height() const { return impl_->settings.height; }

bool MovieFileWriter::fail(const std::string& message) {
    error_ = message;
    status_ = Status::Failed;
    impl_->output.reset();  // closes the file
    return false;
}

bool MovieFileWriter::startWriting() {
    if (status_ != Status::Unknown) {
        error_ = "the movie was already started";
        return false;
    }
    AVDictionary* options = nullptr;
    if (impl_->settings.fastStart) av_dict_set(&options, "movflags", "+faststart", 0);
    int rc = avformat_write_header(impl_->output.get(), &options);
    av_dict_free(&options);
    if (rc < 0) return fail(ffmpeg::errorText("cannot write the movie header", rc));
    status_ = Status::Writing;
    return true;
}

bool MovieFileWriter::isReadyForMoreMediaData() const { return status_ == Status::Writing && !inputFinished_; }

bool MovieFileWriter::appendFrame(const ArgbFrame& frame, MediaTime time) {
    if (!isReadyForMoreMediaData()) {
        error_ = "the movie is not taking frames";
        return false;
    }
    if (!frame.pixels || frame.width <= 0 || frame.height <= 0 || frame.bytesPerRow < frame.width * 4) {
        error_ = "the picture is empty";
        return false;
    }
    const int64_t pts = time.ticksIn(impl_->settings.timescale);
    if (pts < 0 || pts <= impl_->lastPts) {
        error_ = "the frame's time " + std::to_string(pts) + "/" + std::to_string(impl_->settings.timescale) +
                 " does not follow the previous frame's";
        return false;
    }

    AVFrame* picture = impl_->picture.get();
    int rc = av_frame_make_writable(picture);
    if (rc < 0) return fail(ffmpeg::errorText("cannot reuse the picture", rc));
    impl_->scaler = sws_getCachedContext(impl_->scaler, frame.width, frame.height, AV_PIX_FMT_RGB32, picture->width,
                                         picture->height, AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr);
    if (!impl_->scaler) return fail("cannot convert the picture to YUV");
    const uint8_t* source[1] = {frame.pixels};
    const int sourceStride[1] = {frame.bytesPerRow};
    sws_scale(impl_->scaler, source, sourceStride, 0, frame.height, picture->data, picture->linesize);
    picture->pts = pts;

    rc = avcodec_send_frame(impl_->codec.get(), picture);
    if (rc < 0) return fail(ffmpeg::errorText("cannot encode the picture", rc));
    impl_->lastPts = pts;
    ++framesWritten_;
    return drainPackets(false);
}

// Writes the held-back packet, lasting until `nextPts` (codec ticks).
bool MovieFileWriter::writePending(int64_t nextPts) {
    AVPacket* p = impl_->pending.get();
    p->duration = nextPts > p->pts ? nextPts - p->pts : 1;
    av_packet_rescale_ts(p, impl_->codec->time_base, impl_->stream->time_base);
    p->stream_index = impl_->stream->index;
    int rc = av_interleaved_write_frame(impl_->output.get(), p);
    impl_->hasPending = false;
    if (rc < 0) return fail(ffmpeg::errorText("cannot write a frame", rc));
    return true;
}

bool MovieFileWriter::drainPackets(bool flushing) {
    for (;;) {
        int rc = avcodec_receive_packet(impl_->codec.get(), impl_->received.get());
        if (rc == AVERROR(EAGAIN) || rc == AVERROR_EOF) return true;
        if (rc < 0) return fail(ffmpeg::errorText(flushing ? "cannot flush the encoder" : "cannot encode", rc));
        if (impl_->hasPending && !writePending(impl_->received->pts)) return false;
        av_packet_unref(impl_->pending.get());
        av_packet_move_ref(impl_->pending.get(), impl_->received.get());
        impl_->hasPending = true;
    }
}

void MovieFileWriter::markAsFinished() { inputFinished_ = true; }

bool MovieFileWriter::finishWriting(std::optional<MediaTime> endTime) {
    if (status_ != Status::Writing) {
        if (error_.empty()) error_ = "the movie was not being written";
        return false;
    }
    inputFinished_ = true;
    int rc = avcodec_send_frame(impl_->codec.get(), nullptr);
    if (rc < 0) return fail(ffmpeg::errorText("cannot flush the encoder", rc));
    if (!drainPackets(true)) return false;
    if (impl_->hasPending) {
        const int64_t last = impl_->pending->pts;
        const int64_t end = endTime ? endTime->ticksIn(impl_->settings.timescale) : last + 1;
        if (!writePending(end > last ? end : last + 1)) return false;
    }
    rc = av_write_trailer(impl_->output.get());
    if (rc < 0) return fail(ffmpeg::errorText("cannot complete the movie", rc));
    impl_->output.reset();
    status_ = Status::Completed;
    return true;
}
