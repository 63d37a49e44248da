#include "export/movie/encoder/MediaAsset.h"

#include "export/movie/encoder/FfmpegSupport.h"

std::unique_ptr<MediaAsset> MediaAsset::open(const std::string& path, std::string* error) {
    ffmpeg::quietLogs();
    AVFormatContext* raw = nullptr;
    int rc = avformat_open_input(&raw, path.c_str(), nullptr, nullptr);
    if (rc < 0) {
        *error = ffmpeg::errorText("cannot open " + path, rc);
        return nullptr;
    }
    ffmpeg::InputPtr input(raw);
    rc = avformat_find_stream_info(raw, nullptr);
    if (rc < 0) {
        *error = ffmpeg::errorText("cannot read the tracks of " + path, rc);
        return nullptr;
    }
    return std::unique_ptr<MediaAsset>(new MediaAsset(path, input.release()));
}

MediaAsset::~MediaAsset() { avformat_close_input(&context_); }

int MediaAsset::firstTrack(MediaKind kind) const {
    const AVMediaType type = kind == MediaKind::Audio ? AVMEDIA_TYPE_AUDIO : AVMEDIA_TYPE_VIDEO;
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        const AVStream* s = context_->streams[i];
        if (s->codecpar->codec_type == type && !(s->disposition & AV_DISPOSITION_ATTACHED_PIC)) return static_cast<int>(i);
    }
    return -1;
}

MediaTime MediaAsset::trackDuration(int track) const {
    if (track < 0 || track >= static_cast<int>(context_->nb_streams)) return MediaTime::zero();
    const AVStream* s = context_->streams[track];
    if (s->duration != AV_NOPTS_VALUE && s->time_base.num == 1) {
        return MediaTime::make(s->duration, s->time_base.den);
    }
    if (s->duration != AV_NOPTS_VALUE) {
        return MediaTime::make(av_rescale_q(s->duration, s->time_base, AVRational{1, 1000000}), 1000000);
    }
    if (context_->duration != AV_NOPTS_VALUE) return MediaTime::make(context_->duration, AV_TIME_BASE);
    return MediaTime::zero();
}

MediaTime MediaAsset::duration() const {
    MediaTime longest = MediaTime::zero();
    for (unsigned i = 0; i < context_->nb_streams; ++i) {
        MediaTime t = trackDuration(static_cast<int>(i));
        if (longest < t) longest = t;
    }
    return longest;
}
