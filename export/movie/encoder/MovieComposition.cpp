#include "export/movie/encoder/MovieComposition.h"

#include <cstdio>

#include "export/movie/encoder/FfmpegSupport.h"
#include "export/movie/encoder/MediaAsset.h"

namespace {

// One copied track while exporting: its input, the packet read ahead of the
// others, and where it goes.
struct Source {
    AVFormatContext* input = nullptr;
    AVStream* in = nullptr;
    AVStream* out = nullptr;
    ffmpeg::PacketPtr next = ffmpeg::makePacket();
    bool hasNext = false;
    int64_t shift = 0;  // the track's first time, so that it starts at zero
};

// Reads ahead to the source's next packet of its track. Returns false on a
// read error other than the end of the file.
bool readNext(Source& s, std::string* error) {
    s.hasNext = false;
    for (;;) {
        av_packet_unref(s.next.get());
        int rc = av_read_frame(s.input, s.next.get());
        if (rc == AVERROR_EOF) return true;
        if (rc < 0) {
            *error = ffmpeg::errorText("cannot read " + std::string(s.input->url), rc);
            return false;
        }
        if (s.next->stream_index == s.in->index) {
            s.hasNext = true;
            return true;
        }
    }
}

// PCM packets from a WAV file may come without a duration; the sample count
// follows from their size.
void fillDuration(const Source& s, AVPacket* p) {
    if (p->duration > 0) return;
    const AVCodecParameters* par = s.in->codecpar;
    const int bytes = av_get_bits_per_sample(par->codec_id) / 8;
    const int channels = par->ch_layout.nb_channels;
    if (par->codec_type != AVMEDIA_TYPE_AUDIO || bytes <= 0 || channels <= 0 || par->sample_rate <= 0) return;
    const int64_t samples = p->size / (bytes * channels);
    p->duration = av_rescale_q(samples, AVRational{1, par->sample_rate}, s.in->time_base);
}

}  // namespace

bool MovieComposition::insertTrack(MediaAsset& asset, int track, std::string* error) {
    if (track < 0 || track >= static_cast<int>(asset.context()->nb_streams)) {
        *error = "no such track in " + asset.path();
        return false;
    }
    for (const Track& t : tracks_) {
        if (t.asset == &asset) {
            *error = "one track per file";
            return false;
        }
    }
    tracks_.push_back({&asset, track});
    return true;
}

MediaTime MovieComposition::duration() const {
    MediaTime longest = MediaTime::zero();
    for (const Track& t : tracks_) {
        MediaTime d = t.asset->trackDuration(t.index);
        if (longest < d) longest = d;
    }
    return longest;
}

bool MovieComposition::exportPassthrough(const std::string& path, bool optimizeForNetworkUse, std::string* error) const {
    bool ok = false;
    {
        ffmpeg::OutputPtr output = ffmpeg::openMovOutput(path, error);
        if (!output) return false;
        std::vector<Source> sources(tracks_.size());
        for (size_t i = 0; i < tracks_.size(); ++i) {
            Source& s = sources[i];
            s.input = tracks_[i].asset->context();
            s.in = s.input->streams[tracks_[i].index];
            s.out = avformat_new_stream(output.get(), nullptr);
            if (!s.out) {
                *error = "cannot add a track";
                return false;
            }
            int rc = avcodec_parameters_copy(s.out->codecpar, s.in->codecpar);
            if (rc < 0) {
                *error = ffmpeg::errorText("cannot copy a track's description", rc);
                return false;
            }
            s.out->codecpar->codec_tag = 0;  // let the QuickTime muxer pick its own tag
            s.out->time_base = s.in->time_base;
            s.shift = s.in->start_time != AV_NOPTS_VALUE && s.in->start_time > 0 ? s.in->start_time : 0;
            // Read from the beginning, whatever was read before.
            av_seek_frame(s.input, s.in->index, s.in->start_time != AV_NOPTS_VALUE ? s.in->start_time : 0,
                          AVSEEK_FLAG_BACKWARD);
        }

        AVDictionary* options = nullptr;
        if (optimizeForNetworkUse) av_dict_set(&options, "movflags", "+faststart", 0);
        int rc = avformat_write_header(output.get(), &options);
        av_dict_free(&options);
        if (rc < 0) {
            *error = ffmpeg::errorText("cannot write the movie header", rc);
        } else {
            ok = true;
            for (Source& s : sources) ok = ok && readNext(s, error);
            // Merge the tracks in time order, so the file interleaves them.
            while (ok) {
                Source* first = nullptr;
                for (Source& s : sources) {
                    if (!s.hasNext) continue;
                    if (!first || av_compare_ts(s.next->dts, s.in->time_base, first->next->dts, first->in->time_base) < 0) {
                        first = &s;
                    }
                }
                if (!first) break;
                AVPacket* p = first->next.get();
                fillDuration(*first, p);
                if (p->pts != AV_NOPTS_VALUE) p->pts -= first->shift;
                if (p->dts != AV_NOPTS_VALUE) p->dts -= first->shift;
                av_packet_rescale_ts(p, first->in->time_base, first->out->time_base);
                p->stream_index = first->out->index;
                p->pos = -1;
                rc = av_interleaved_write_frame(output.get(), p);
                if (rc < 0) {
                    *error = ffmpeg::errorText("cannot write a sample", rc);
                    ok = false;
                    break;
                }
                ok = readNext(*first, error);
            }
            if (ok) {
                rc = av_write_trailer(output.get());
                if (rc < 0) {
                    *error = ffmpeg::errorText("cannot complete the movie", rc);
                    ok = false;
                }
            }
        }
    }
    if (!ok) std::remove(path.c_str());
    return ok;
}
