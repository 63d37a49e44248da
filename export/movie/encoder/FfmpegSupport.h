#pragma once
// Small helpers shared by the movie encoder, the muxer and the media reader:
// owning pointers for FFmpeg objects, readable error texts, and a quiet log.
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace ffmpeg {

// FFmpeg prints warnings for ordinary events (x264's statistics, the mov
// muxer's notes); only errors reach stderr. Called once per process.
void quietLogs();

// "what: FFmpeg's text for code".
std::string errorText(const std::string& what, int code);

struct CodecContextDeleter {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameDeleter {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketDeleter {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct SwsDeleter {
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};
// An input opened with avformat_open_input.
struct InputDeleter {
    void operator()(AVFormatContext* f) const { avformat_close_input(&f); }
};
// An output: closes its file (when one was opened) and frees the context.
struct OutputDeleter {
    void operator()(AVFormatContext* f) const;
};

using CodecContextPtr = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using FramePtr = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, PacketDeleter>;
using SwsPtr = std::unique_ptr<SwsContext, SwsDeleter>;
using InputPtr = std::unique_ptr<AVFormatContext, InputDeleter>;
using OutputPtr = std::unique_ptr<AVFormatContext, OutputDeleter>;

inline PacketPtr makePacket() { return PacketPtr(av_packet_alloc()); }
inline FramePtr makeFrame() { return FramePtr(av_frame_alloc()); }

// Opens a QuickTime movie for writing at `path` (the file is created now).
// Returns null and sets `error` on failure.
OutputPtr openMovOutput(const std::string& path, std::string* error);

}  // namespace ffmpeg
