#include "engine/AudioFileLoaderOperation.h"

#include <soxr.h>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <sndfile.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "engine/AudioController.h"
#include "library/util/Log.h"

namespace {

constexpr int32_t kFormatNotSupported = int32_t(audioFourCC("fmt?"));  // the converter cannot make the target
constexpr int32_t kEndOfFile = -39;                                    // data shorter than the file says
constexpr size_t kMaxLoadBytes = size_t(1) << 30;                       // 1 GiB: about 3 hours of engine audio
constexpr uint32_t kConverterSlack = 64;
constexpr int kMaxFileChannels = 1024;  // libsndfile's own limit                                // frames a rate converter may end short

AudioError osStatusError(int32_t status, std::string text) {
    return AudioError{kAudioErrorOSStatusDomain, status, std::move(text)};
}

std::string withStatus(const char* message, int32_t status) {
    return std::string(message) + " (error " + audioStatusText(status) + ")";
}

// A WAV or AIFF whose sample data chunk is shorter than its header declares
// has been cut off (a copy that did not finish, a full disk). libsndfile
// quietly plays what is there; its log shows "data : 17640 (should be 9956)".
// Streaming writers put 0 or all ones there: those files are not truncated.
bool dataChunkTruncated(SNDFILE* file) {
    char log[4096] = {};
    sf_command(file, SFC_GET_LOG_INFO, log, sizeof log - 1);
    for (const char* line = log; line && *line;) {
        const char* end = std::strchr(line, '\n');
        std::string text(line, end ? size_t(end - line) : std::strlen(line));
        if (text.rfind("data :", 0) == 0 || text.rfind("SSND :", 0) == 0) {
            unsigned long long declared = 0, actual = 0;
            const size_t should = text.find("(should be ");
            if (should != std::string::npos &&
                std::sscanf(text.c_str() + 6, "%llu", &declared) == 1 &&
                std::sscanf(text.c_str() + should + 11, "%llu", &actual) == 1) {
                if (declared > actual && declared != 0 && declared < 0xFFFFFF00ull) return true;
            }
        }
        line = end ? end + 1 : nullptr;
    }
    return false;
}

uint32_t targetLength(double targetRate, double fileRate, int64_t fileFrames) {
    if (fileFrames <= 0) return 0;
    if (targetRate == fileRate) return uint32_t(fileFrames);
    const double t = targetRate, f = fileRate;
    if (t == std::floor(t) && f == std::floor(f) && t < 1e7 && f < 1e7) {
        // Exact: ceil(t * frames / f) in integers.
        const unsigned long long num = (unsigned long long)t * (unsigned long long)fileFrames;
        const unsigned long long den = (unsigned long long)f;
        return uint32_t((num + den - 1) / den);
    }
    return uint32_t(std::ceil(t / f * double(fileFrames)));
}

inline int16_t floatToInt16(float x) {
    const float v = x * 32768.0f;
    if (v >= 32767.0f) return 32767;
    if (v <= -32768.0f) return -32768;
    return int16_t(std::lrintf(v));
}

// Splits interleaved stereo into two buffers, eight frames at a time.
void deinterleave(const int16_t* __restrict src, int16_t* __restrict left, int16_t* __restrict right, uint32_t frames) {
    uint32_t k = 0;
#if defined(__SSE2__)
    for (; k + 8 <= frames; k += 8) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * k));      // l0 r0 .. l3 r3
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * k + 8));  // l4 r4 .. l7 r7
        // Sign-extend-free split: shift the left samples out of each 32-bit pair.
        __m128i la = _mm_srai_epi32(_mm_slli_epi32(a, 16), 16);
        __m128i lb = _mm_srai_epi32(_mm_slli_epi32(b, 16), 16);
        __m128i ra = _mm_srai_epi32(a, 16);
        __m128i rb = _mm_srai_epi32(b, 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(left + k), _mm_packs_epi32(la, lb));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(right + k), _mm_packs_epi32(ra, rb));
    }
#endif
    for (; k < frames; ++k) {
        left[k] = src[2 * k];
        right[k] = src[2 * k + 1];
    }
}

// Writes interleaved frames (targetChannels wide) into the target buffers.
class TargetWriter {
public:
    TargetWriter(const AudioStreamDescription& d, AudioBufferList* list)
        : isFloat_(audioDescriptionIsFloat(d)),
          nonInterleaved_(audioDescriptionIsNonInterleaved(d)),
          channels_(d.mChannelsPerFrame),
          list_(list) {}

    template <class T>
    void write(const T* src, uint32_t frames, uint32_t at) {
        if constexpr (std::is_same_v<T, int16_t>) {
            if (!isFloat_ && nonInterleaved_) {
                // The common case: 16-bit stereo into the engine format, one pass.
                if (channels_ == 2) {
                    deinterleave(src, static_cast<int16_t*>(list_->mBuffers[0].mData) + at,
                                 static_cast<int16_t*>(list_->mBuffers[1].mData) + at, frames);
                } else {
                    std::memcpy(static_cast<int16_t*>(list_->mBuffers[0].mData) + at, src, frames * sizeof(int16_t));
                }
                return;
            }
        }
        for (uint32_t c = 0; c < channels_; ++c) {
            for (uint32_t k = 0; k < frames; ++k) {
                const T s = src[size_t(k) * channels_ + c];
                put(c, at + k, s);
            }
        }
    }

private:
    void put(uint32_t c, uint32_t frame, int16_t s) {
        if (isFloat_) slotF(c, frame) = float(s) / 32768.0f;
        else slotS(c, frame) = s;
    }
    void put(uint32_t c, uint32_t frame, float s) {
        if (isFloat_) slotF(c, frame) = s;
        else slotS(c, frame) = floatToInt16(s);
    }
    int16_t& slotS(uint32_t c, uint32_t frame) {
        if (nonInterleaved_) return static_cast<int16_t*>(list_->mBuffers[c].mData)[frame];
        return static_cast<int16_t*>(list_->mBuffers[0].mData)[size_t(frame) * channels_ + c];
    }
    float& slotF(uint32_t c, uint32_t frame) {
        if (nonInterleaved_) return static_cast<float*>(list_->mBuffers[c].mData)[frame];
        return static_cast<float*>(list_->mBuffers[0].mData)[size_t(frame) * channels_ + c];
    }

    bool isFloat_, nonInterleaved_;
    uint32_t channels_;
    AudioBufferList* list_;
};

// Like allocateBufferList, without zeroing: the loader fills every frame.
AudioBufferList* allocateUnzeroed(const AudioStreamDescription& d, uint32_t frames) {
    auto* list = static_cast<AudioBufferList*>(std::calloc(1, sizeof(AudioBufferList)));
    if (!list) return nullptr;
    const uint32_t buffers = audioDescriptionIsNonInterleaved(d) ? d.mChannelsPerFrame : 1;
    list->mNumberBuffers = buffers;
    const size_t bytes = size_t(frames) * d.mBytesPerFrame;
    for (uint32_t i = 0; i < buffers; ++i) {
        list->mBuffers[i].mNumberChannels = audioDescriptionIsNonInterleaved(d) ? 1 : d.mChannelsPerFrame;
        list->mBuffers[i].mDataByteSize = uint32_t(bytes);
        list->mBuffers[i].mData = std::malloc(bytes ? bytes : 1);
        if (!list->mBuffers[i].mData) {
            freeBufferList(list);
            return nullptr;
        }
    }
    return list;
}

struct SoxrDeleter {
    void operator()(soxr* s) const { soxr_delete(s); }
};

struct SndfileCloser {
    void operator()(SNDFILE* f) const {
        if (f) QUILLO_CHECK_RESULT(sf_close(f), "sf_close");
    }
};

}  // namespace

std::string audioStatusText(int32_t status) {
    const uint32_t u = uint32_t(status);
    char chars[5] = {char(u >> 24), char(u >> 16), char(u >> 8), char(u), 0};
    std::string four;
    for (int i = 0; i < 4 && chars[i]; ++i) four.push_back(std::isprint(uint8_t(chars[i])) ? chars[i] : '?');
    return std::to_string(status) + "/" + four;
}

bool audioCheckResult(int32_t status, const char* operation, const char* file, int line) {
    if (status == 0) return true;
    const uint32_t u = uint32_t(status);
    std::string four;
    const char chars[4] = {char(u >> 24), char(u >> 16), char(u >> 8), char(u)};
    for (char ch : chars) {
        if (!ch) break;
        four.push_back(std::isprint(uint8_t(ch)) ? ch : '?');
    }
    const char* base = std::strrchr(file, '/');
    qlog("%s:%d: %s result %d %08X %s\n", base ? base + 1 : file, line, operation, int(status), u, four.c_str());
    return false;
}

AudioFileLoaderOperation::AudioFileLoaderOperation(std::string url, const AudioStreamDescription& target)
    : url_(std::move(url)), target_(target) {
    const AudioStreamDescription zero{};
    if (std::memcmp(&target_, &zero, sizeof zero) == 0)
        target_ = AudioController::nonInterleaved16BitStereoAudioDescription();
}

bool AudioFileLoaderOperation::infoForFileAtURL(const std::string& url, AudioStreamDescription* description,
                                                uint64_t* lengthInFrames, AudioError* error) {
    SF_INFO info{};
    std::unique_ptr<SNDFILE, SndfileCloser> file(sf_open(url.c_str(), SFM_READ, &info));
    if (!file) {
        const int status = sf_error(nullptr);
        QUILLO_CHECK_RESULT(status ? status : -1, "sf_open");
        if (error) *error = osStatusError(status ? status : -1, "Couldn't open the audio file");
        return false;
    }
    if (info.channels <= 0 || info.samplerate <= 0 || info.frames < 0) {
        if (error) *error = osStatusError(kFormatNotSupported, "Couldn't read the audio file");
        return false;
    }
    if (description) {
        AudioStreamDescription d{};
        d.mSampleRate = info.samplerate;
        d.mFormatID = kAudioFormatLinearPCM;
        const int sub = info.format & SF_FORMAT_SUBMASK;
        const bool isFloat = sub == SF_FORMAT_FLOAT || sub == SF_FORMAT_DOUBLE;
        uint32_t bits = 16;
        switch (sub) {
            case SF_FORMAT_PCM_S8:
            case SF_FORMAT_PCM_U8: bits = 8; break;
            case SF_FORMAT_PCM_24: bits = 24; break;
            case SF_FORMAT_PCM_32:
            case SF_FORMAT_FLOAT: bits = 32; break;
            case SF_FORMAT_DOUBLE: bits = 64; break;
            default: bits = 16; break;
        }
        d.mFormatFlags = (isFloat ? kAudioFormatFlagIsFloat : kAudioFormatFlagIsSignedInteger) | kAudioFormatFlagIsPacked |
                         ((info.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_AIFF ? kAudioFormatFlagIsBigEndian : 0);
        d.mChannelsPerFrame = uint32_t(info.channels);
        d.mBitsPerChannel = bits;
        d.mBytesPerFrame = d.mBytesPerPacket = bits / 8 * d.mChannelsPerFrame;
        d.mFramesPerPacket = 1;
        *description = d;
    }
    if (lengthInFrames) *lengthInFrames = uint64_t(info.frames);
    return true;
}

void AudioFileLoaderOperation::main() {
    struct Finish {
        AudioFileLoaderOperation* op;
        ~Finish() {
            if (op->completedBlock) op->completedBlock();
        }
    } finish{this};
    bufferList_ = nullptr;
    lengthInFrames_ = 0;
    error_.reset();

    // 1. Open.
    SF_INFO info{};
    std::unique_ptr<SNDFILE, SndfileCloser> file(sf_open(url_.c_str(), SFM_READ, &info));
    if (!file) {
        const int status = sf_error(nullptr) ? sf_error(nullptr) : -1;
        QUILLO_CHECK_RESULT(status, "sf_open");
        error_ = osStatusError(status, "Couldn't open the audio file");
        return;
    }
    // 2. The file's format, and whether we can make the target from it.
    if (info.channels <= 0 || info.channels > kMaxFileChannels || info.samplerate <= 0 || info.frames < 0) {
        error_ = osStatusError(kFormatNotSupported, "Couldn't read the audio file");
        return;
    }
    const AudioStreamDescription& t = target_;
    const bool targetOk = t.mFormatID == kAudioFormatLinearPCM && t.mSampleRate > 0 && t.mChannelsPerFrame >= 1 &&
                          t.mChannelsPerFrame <= 2 &&
                          ((audioDescriptionIsFloat(t) && t.mBitsPerChannel == 32) ||
                           (!audioDescriptionIsFloat(t) && t.mBitsPerChannel == 16)) &&
                          !(t.mFormatFlags & kAudioFormatFlagIsBigEndian);
    if (!targetOk) {
        QUILLO_CHECK_RESULT(kFormatNotSupported, "ExtAudioFileSetProperty(kExtAudioFileProperty_ClientDataFormat)");
        error_ = osStatusError(kFormatNotSupported, withStatus("Couldn't convert the audio file", kFormatNotSupported));
        return;
    }
    if (dataChunkTruncated(file.get())) {
        QUILLO_CHECK_RESULT(kEndOfFile, "sf_readf");
        error_ = osStatusError(kEndOfFile, withStatus("Couldn't read the audio file", kEndOfFile));
        return;
    }

    // 3. Channel map: output channel k takes file channel min(k, file channels - 1).
    const uint32_t fileChannels = uint32_t(info.channels);
    const uint32_t channels = t.mChannelsPerFrame;
    uint32_t channelMap[2];
    for (uint32_t k = 0; k < channels; ++k) channelMap[k] = std::min(k, fileChannels - 1);

    // 4. Length in target frames.
    const bool resample = t.mSampleRate != double(info.samplerate);
    const uint32_t length = targetLength(t.mSampleRate, info.samplerate, info.frames);

    // 5. Memory: the whole sound, or one piece when streaming. A header that
    // claims more than 1 GiB of samples is not a sound we can hold.
    const bool streaming = bool(audioReceiverBlock);
    const double totalBytes = double(length) * t.mBytesPerFrame * (audioDescriptionIsNonInterleaved(t) ? channels : 1);
    if (!streaming && (totalBytes > double(kMaxLoadBytes) || double(info.frames) * t.mSampleRate / info.samplerate > 4e9)) {
        error_ = AudioError{kAudioErrorOSStatusDomain, ENOMEM, "Not enough memory to open file"};
        return;
    }
    AudioBufferList* list = streaming ? allocateBufferList(t, kPieceFrames) : allocateUnzeroed(t, length);
    if (!list) {
        error_ = AudioError{kAudioErrorOSStatusDomain, ENOMEM, "Not enough memory to open file"};
        return;
    }

    // 6. Read, convert and hand on, piece by piece.
    TargetWriter writer(t, list);
    uint32_t written = 0;         // target frames produced so far
    uint32_t pieceFill = 0;       // frames waiting in the streaming piece
    auto emit = [&](auto* frames, uint32_t count) {
        if (!streaming) {
            count = std::min(count, length - written);
            writer.write(frames, count, written);
            written += count;
            return;
        }
        while (count > 0 && written < length && !isCancelled()) {
            const uint32_t n = std::min({count, kPieceFrames - pieceFill, length - written});
            writer.write(frames, n, pieceFill);
            pieceFill += n;
            written += n;
            frames += size_t(n) * channels;
            count -= n;
            if (pieceFill == kPieceFrames || written == length) {
                for (uint32_t b = 0; b < list->mNumberBuffers; ++b)
                    list->mBuffers[b].mDataByteSize = pieceFill * t.mBytesPerFrame;
                audioReceiverBlock(list, pieceFill);
                pieceFill = 0;
            }
        }
    };

    int32_t readError = 0;
    // Read 16384 frames per call (fewer system calls; fewer for files with
    // many channels); the receiver still gets 4096-frame pieces.
    uint32_t readFrames = fileChannels <= 2 ? 4 * kPieceFrames : std::max(256u, 32768u / fileChannels);
    const double ratio = t.mSampleRate / double(info.samplerate);
    const bool floatTarget = audioDescriptionIsFloat(t);
    // Rate conversion runs on as few channels as the target takes from the
    // file (a mono file feeding both sides is converted once), in 16-bit when
    // the target is 16-bit, so samples go from libsndfile to the converter
    // and from it to the target without a float pass of our own.
    const uint32_t convertedChannels = std::min(fileChannels, channels);
    std::unique_ptr<soxr, SoxrDeleter> converter;
    if (resample) {
        if (ratio < 1.0 / 256.0 || ratio > 256.0) {
            freeBufferList(list);
            QUILLO_CHECK_RESULT(kFormatNotSupported, "soxr_create");
            error_ = osStatusError(kFormatNotSupported, withStatus("Couldn't convert the audio file", kFormatNotSupported));
            return;
        }
        // Keep each converted piece to about 64k frames.
        readFrames = std::clamp(uint32_t(65536.0 / ratio), 1u, readFrames);
        const soxr_datatype_t type = floatTarget ? SOXR_FLOAT32_I : SOXR_INT16_I;
        soxr_io_spec_t io = soxr_io_spec(type, type);
        io.flags |= SOXR_NO_DITHER;  // the file's own samples, rounded; no added noise
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
        soxr_error_t soxrError = nullptr;
        converter.reset(soxr_create(double(info.samplerate), t.mSampleRate, convertedChannels, &soxrError, &io,
                                    &quality, nullptr));
        if (!converter || soxrError) {
            freeBufferList(list);
            QUILLO_CHECK_RESULT(kFormatNotSupported, "soxr_create");
            error_ = osStatusError(kFormatNotSupported, withStatus("Couldn't convert the audio file", kFormatNotSupported));
            return;
        }
    }
    const size_t convertedCapacity = resample ? size_t(std::ceil(readFrames * ratio)) + 256 : 0;
    std::vector<int16_t> shorts, pickedShorts, convertedShorts, spreadShorts;
    std::vector<float> floats, picked, converted, spread;
    if (floatTarget) {
        floats.resize(size_t(readFrames) * fileChannels);
        picked.resize(size_t(readFrames) * channels);
        converted.resize(convertedCapacity * convertedChannels);
        spread.resize(resample && convertedChannels != channels ? convertedCapacity * channels : 0);
    } else {
        shorts.resize(size_t(readFrames) * fileChannels);
        pickedShorts.resize(size_t(readFrames) * channels);
        convertedShorts.resize(convertedCapacity * convertedChannels);
        spreadShorts.resize(resample && convertedChannels != channels ? convertedCapacity * channels : 0);
    }

    // Interleaved `n` frames of `from` channels -> `to` channels by the map.
    auto mapChannels = [&](const auto* in, uint32_t from, uint32_t to, auto* out, size_t n) {
        for (size_t k = 0; k < n; ++k)
            for (uint32_t c = 0; c < to; ++c) out[k * to + c] = in[k * from + channelMap[c]];
    };
    // Converts `n` frames (nullptr at the end: drains the converter) and emits the result.
    auto convert = [&](const auto* in, size_t n, auto& out, auto& spreadOut) -> bool {
        using T = std::remove_const_t<std::remove_pointer_t<decltype(in)>>;
        for (bool flushing = in == nullptr;;) {
            size_t used = 0, made = 0;
            if (soxr_error_t e = soxr_process(converter.get(), in, n, &used, out.data(), convertedCapacity, &made)) {
                QUILLO_CHECK_RESULT(kFormatNotSupported, e);
                readError = kFormatNotSupported;
                return false;
            }
            if (made > 0) {
                const T* result = out.data();
                if (convertedChannels != channels) {
                    mapChannels(result, convertedChannels, channels, spreadOut.data(), made);
                    result = spreadOut.data();
                }
                emit(result, uint32_t(made));
            }
            if (in) in += used * convertedChannels;
            n -= used;
            if (isCancelled() || written >= length) return true;
            if (flushing ? made == 0 : n == 0) return true;
        }
    };

    int64_t fileFramesLeft = info.frames;
    while (!isCancelled() && written < length) {
        const sf_count_t want = sf_count_t(std::min<int64_t>(readFrames, fileFramesLeft));
        sf_count_t got = 0;
        if (floatTarget) got = want > 0 ? sf_readf_float(file.get(), floats.data(), want) : 0;
        else got = want > 0 ? sf_readf_short(file.get(), shorts.data(), want) : 0;
        if (got < 0 || (got < want && sf_error(file.get()) != SF_ERR_NO_ERROR)) {
            readError = sf_error(file.get()) ? sf_error(file.get()) : kEndOfFile;
            break;
        }
        fileFramesLeft -= got;
        const bool last = got == 0 || fileFramesLeft <= 0;
        const size_t n = size_t(got);
        // One piece, in the sample type of the target: pick the channels the
        // target takes, convert the rate if needed, hand it on.
        auto take = [&](const auto* in, auto& pickedBuf, auto& convertedBuf, auto& spreadBuf) -> bool {
            using T = std::remove_const_t<std::remove_pointer_t<decltype(in)>>;
            const uint32_t wanted = resample ? convertedChannels : channels;
            if (fileChannels != wanted) {
                mapChannels(in, fileChannels, wanted, pickedBuf.data(), n);
                in = pickedBuf.data();
            }
            if (!resample) {
                emit(in, uint32_t(n));
                return true;
            }
            bool done = n == 0 || convert(in, n, convertedBuf, spreadBuf);
            if (done && last) done = convert(static_cast<const T*>(nullptr), 0, convertedBuf, spreadBuf);
            return done;
        };
        const bool ok = floatTarget ? take(static_cast<const float*>(floats.data()), picked, converted, spread)
                                    : take(static_cast<const int16_t*>(shorts.data()), pickedShorts, convertedShorts,
                                           spreadShorts);
        if (!ok || last) break;
    }
    converter.reset();

    if (readError) {
        QUILLO_CHECK_RESULT(readError, "sf_readf");
        freeBufferList(list);
        error_ = osStatusError(readError, withStatus("Couldn't read the audio file", readError));
        return;
    }
    // A streamed piece left over (the converter may end short of the length).
    if (streaming && pieceFill > 0 && !isCancelled()) {
        for (uint32_t b = 0; b < list->mNumberBuffers; ++b) list->mBuffers[b].mDataByteSize = pieceFill * t.mBytesPerFrame;
        audioReceiverBlock(list, pieceFill);
    }

    // 7. Publish, or let go.
    if (isCancelled() || streaming) {
        freeBufferList(list);
        if (!isCancelled()) lengthInFrames_ = length;
        return;
    }
    // The converter may end a few frames short; those frames are silent. A
    // file that delivers less than its header promised is cut off.
    if (written + kConverterSlack < length) {
        QUILLO_CHECK_RESULT(kEndOfFile, "sf_readf");
        freeBufferList(list);
        error_ = osStatusError(kEndOfFile, withStatus("Couldn't read the audio file", kEndOfFile));
        return;
    }
    if (written < length) {
        for (uint32_t b = 0; b < list->mNumberBuffers; ++b) {
            const size_t stride = t.mBytesPerFrame;  // per buffer
            std::memset(static_cast<char*>(list->mBuffers[b].mData) + size_t(written) * stride, 0,
                        size_t(length - written) * stride);
        }
    }
    bufferList_ = list;
    lengthInFrames_ = length;
}
