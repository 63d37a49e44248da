#include "export/movie/encoder/FfmpegSupport.h"

#include <mutex>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace ffmpeg {

void quietLogs() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_ERROR); });
}

std::string errorText(const std::string& what, int code) {
    char buf[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, buf, sizeof buf);
    return what + ": " + buf;
}

void OutputDeleter::operator()(AVFormatContext* f) const {
    if (!f) return;
    if (f->pb && !(f->oformat->flags & AVFMT_NOFILE)) avio_closep(&f->pb);
    avformat_free_context(f);
}

OutputPtr openMovOutput(const std::string& path, std::string* error) {
    quietLogs();
    AVFormatContext* raw = nullptr;
    int rc = avformat_alloc_output_context2(&raw, nullptr, "mov", path.c_str());
    if (rc < 0 || !raw) {
        *error = errorText("cannot make a QuickTime movie", rc);
        return nullptr;
    }
    OutputPtr out(raw);
    rc = avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE);
    if (rc < 0) {
        *error = errorText("cannot open " + path, rc);
        return nullptr;
    }
    return out;
}

}  // namespace ffmpeg
