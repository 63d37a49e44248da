// The device driver: one full-duplex PortAudio stream on the chosen devices,
// and the list of devices to choose from.
#include <alsa/asoundlib.h>
#include <jack/jack.h>
#include <portaudio.h>

#include <cstring>
#include <mutex>

#include "engine/AudioDevices.h"
#include "engine/AudioDriver.h"
#include "library/util/Log.h"

namespace {

// ALSA and JACK print dozens of lines on stderr while PortAudio probes for
// devices that are not there; route their messages nowhere.
void silentAlsa(const char*, int, const char*, int, const char*, ...) {}
void silentJack(const char*) {}

void silenceAudioLibraries() {
    static std::once_flag once;
    std::call_once(once, [] {
        snd_lib_error_set_handler(silentAlsa);
        jack_set_error_function(silentJack);
        jack_set_info_function(silentJack);
    });
}

// The device of that name that can play (or record), else the default one.
// A saved device that is gone is said once per start, so the log tells why
// the sound comes out somewhere else.
PaDeviceIndex deviceNamed(const std::string& name, bool input) {
    const PaDeviceIndex fallback = input ? Pa_GetDefaultInputDevice() : Pa_GetDefaultOutputDevice();
    if (name.empty()) return fallback;
    for (PaDeviceIndex i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info && name == info->name && (input ? info->maxInputChannels : info->maxOutputChannels) > 0) return i;
    }
    qlog("Engine: %s device \"%s\" is missing; using the default %s device", input ? "Input" : "Output",
         name.c_str(), input ? "input" : "output");
    return fallback;
}

class PortAudioDriver : public AudioDriver {
public:
    ~PortAudioDriver() override { stop(); }
    const char* name() const override { return "PortAudio"; }

    bool start(const AudioDriverConfig& config, AudioRenderer* renderer, AudioError* error) override {
        stop();
        silenceAudioLibraries();
        PaError err = Pa_Initialize();
        if (err != paNoError) return fail(err, error);
        initialized_ = true;
        config_ = config;
        renderer_ = renderer;

        const bool nonInterleaved = audioDescriptionIsNonInterleaved(config.format);
        const PaSampleFormat sampleFormat =
            (audioDescriptionIsFloat(config.format) ? paFloat32 : paInt16) | (nonInterleaved ? paNonInterleaved : 0);
        const int channels = int(config.format.mChannelsPerFrame ? config.format.mChannelsPerFrame : 2);

        PaStreamParameters out{}, in{};
        PaStreamParameters* outP = nullptr;
        PaStreamParameters* inP = nullptr;
        // Both names are looked up first, so the log names every missing device.
        out.device = deviceNamed(config.outputDevice, false);
        const PaDeviceIndex inputDevice = config.inputEnabled ? deviceNamed(config.inputDevice, true) : paNoDevice;
        if (out.device == paNoDevice) return fail(paDeviceUnavailable, error);
        out.channelCount = channels;
        out.sampleFormat = sampleFormat;
        out.suggestedLatency = Pa_GetDeviceInfo(out.device)->defaultLowOutputLatency;
        outP = &out;

        inputChannels_ = 0;
        if (config.inputEnabled) {
            in.device = inputDevice;
            const PaDeviceInfo* info = in.device == paNoDevice ? nullptr : Pa_GetDeviceInfo(in.device);
            if (info && info->maxInputChannels > 0) {
                inputChannels_ = std::min(channels, info->maxInputChannels);
                // A mono microphone feeds both sides; interleaved formats need
                // a converted copy, non-interleaved ones share the buffer.
                in.channelCount = inputChannels_;
                in.sampleFormat = sampleFormat;
                in.suggestedLatency = info->defaultLowInputLatency;
                inP = &in;
            }
        }
        if (inP && inputChannels_ < channels && !nonInterleaved) {
            inputScratch_ = allocateBufferList(config.format, config.framesPerBuffer);
            if (!inputScratch_) inP = nullptr;
        }
        if (!inP) inputChannels_ = 0;

        err = Pa_OpenStream(&stream_, inP, outP, config.format.mSampleRate, config.framesPerBuffer, paNoFlag,
                            &PortAudioDriver::callback, this);
        if (err != paNoError && inP) {
            // The microphone would not open with the output: play without it.
            inP = nullptr;
            inputChannels_ = 0;
            err = Pa_OpenStream(&stream_, nullptr, outP, config.format.mSampleRate, config.framesPerBuffer, paNoFlag,
                                &PortAudioDriver::callback, this);
        }
        if (err != paNoError) {
            stream_ = nullptr;
            return fail(err, error);
        }
        err = Pa_StartStream(stream_);
        if (err != paNoError) return fail(err, error);
        if (const PaStreamInfo* info = Pa_GetStreamInfo(stream_)) latency_ = info->outputLatency;
        return true;
    }

    void stop() override {
        if (stream_) {
            Pa_StopStream(stream_);
            Pa_CloseStream(stream_);
            stream_ = nullptr;
        }
        if (initialized_) {
            Pa_Terminate();
            initialized_ = false;
        }
        freeBufferList(inputScratch_);
        inputScratch_ = nullptr;
        inputChannels_ = 0;
    }

    bool inputRunning() const override { return stream_ && inputChannels_ > 0; }
    bool rendersOnItsOwnThread() const override { return true; }
    double bufferDuration() const override {
        return config_.format.mSampleRate > 0 ? config_.framesPerBuffer / config_.format.mSampleRate : 0.0;
    }
    bool failed() const override { return stream_ && Pa_IsStreamActive(stream_) < 0; }

private:
    bool fail(PaError err, AudioError* error) {
        const char* text = Pa_GetErrorText(err);
        if (error) *error = AudioError{"PortAudio", int(err), text ? text : "PortAudio error"};
        stop();
        return false;
    }

    static int callback(const void* input, void* output, unsigned long frames, const PaStreamCallbackTimeInfo*,
                        PaStreamCallbackFlags, void* user) QUILLO_NONBLOCKING {
        auto* self = static_cast<PortAudioDriver*>(user);
        self->render(input, output, uint32_t(frames));
        return paContinue;
    }

    void render(const void* input, void* output, uint32_t frames) QUILLO_NONBLOCKING {
        const AudioStreamDescription& f = config_.format;
        const bool nonInterleaved = audioDescriptionIsNonInterleaved(f);
        const uint32_t channels = f.mChannelsPerFrame ? f.mChannelsPerFrame : 2;
        const uint32_t bytes = frames * f.mBytesPerFrame;

        AudioBufferList out{}, in{};
        if (nonInterleaved) {
            auto* const* ptrs = static_cast<void* const*>(output);
            out.mNumberBuffers = channels;
            for (uint32_t c = 0; c < channels && c < 2; ++c) out.mBuffers[c] = AudioBuffer{1, bytes, ptrs[c]};
        } else {
            out.mNumberBuffers = 1;
            out.mBuffers[0] = AudioBuffer{channels, bytes, output};
        }

        const AudioBufferList* inList = nullptr;
        if (input && inputChannels_ > 0) {
            if (nonInterleaved) {
                auto* const* ptrs = static_cast<void* const*>(const_cast<void*>(input));
                in.mNumberBuffers = channels;
                for (uint32_t c = 0; c < channels && c < 2; ++c)
                    in.mBuffers[c] = AudioBuffer{1, bytes, ptrs[std::min<uint32_t>(c, uint32_t(inputChannels_) - 1)]};
                inList = &in;
            } else if (uint32_t(inputChannels_) == channels) {
                in.mNumberBuffers = 1;
                in.mBuffers[0] = AudioBuffer{channels, bytes, const_cast<void*>(input)};
                inList = &in;
            } else if (inputScratch_ && frames <= config_.framesPerBuffer) {
                // Interleaved mono microphone: copy each sample to every channel.
                const uint32_t sampleBytes = f.mBytesPerFrame / channels;
                auto* dst = static_cast<char*>(inputScratch_->mBuffers[0].mData);
                const auto* src = static_cast<const char*>(input);
                for (uint32_t k = 0; k < frames; ++k)
                    for (uint32_t c = 0; c < channels; ++c)
                        std::memcpy(dst + (k * channels + c) * sampleBytes, src + k * sampleBytes, sampleBytes);
                inputScratch_->mBuffers[0].mDataByteSize = bytes;
                inList = inputScratch_;
            }
        }
        renderer_->renderPass(inList, &out, frames, AudioCurrentHostTime());
        if (!config_.outputEnabled) {
            for (uint32_t b = 0; b < out.mNumberBuffers; ++b) std::memset(out.mBuffers[b].mData, 0, bytes);
        }
    }

    AudioDriverConfig config_;
    AudioRenderer* renderer_ = nullptr;
    PaStream* stream_ = nullptr;
    bool initialized_ = false;
    int inputChannels_ = 0;
    AudioBufferList* inputScratch_ = nullptr;
    double latency_ = 0.0;
};

}  // namespace

std::unique_ptr<AudioDriver> makePortAudioDriver() { return std::make_unique<PortAudioDriver>(); }

AudioDeviceNames listAudioDevices() {
    AudioDeviceNames names;
    silenceAudioLibraries();
    // Initialising again while a stream runs only counts up; the stream stays.
    if (Pa_Initialize() != paNoError) return names;
    for (PaDeviceIndex i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (!info || !info->name) continue;
        if (info->maxOutputChannels > 0) names.outputs.emplace_back(info->name);
        if (info->maxInputChannels > 0) names.inputs.emplace_back(info->name);
    }
    Pa_Terminate();
    return names;
}
