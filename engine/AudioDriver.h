#pragma once
// Device drivers behind one small interface. Every driver calls the same
// render pass (AudioRenderer::renderPass), so what the offline driver renders
// is sample for sample what a device would play.
//
//   PortAudio  one full-duplex stream on the chosen devices (the default
//              ones when none is chosen or the chosen one is gone; input
//              only while enabled), the chosen buffer size, the stream's
//              own thread.
//   Null       a thread that runs the render pass in real time from the
//              steady clock, one buffer-sized block per period; used when no
//              device can be opened or when QUILLO_AUDIO=null.
//   Offline    no thread: AudioController::renderOffline renders on the
//              calling thread as fast as possible (tests, benchmarks, files).
#include <memory>
#include <string>

#include "engine/AudioTypes.h"
#include "engine/Realtime.h"

class AudioRenderer {
public:
    virtual ~AudioRenderer() = default;
    // One render pass: `input` (controller format, or nullptr when there is no
    // microphone) and `output` (controller format) are `frames` long.
    virtual void renderPass(const AudioBufferList* input, AudioBufferList* output, uint32_t frames,
                            uint64_t hostTime) QUILLO_NONBLOCKING = 0;
};

struct AudioDriverConfig {
    AudioStreamDescription format{};
    bool inputEnabled = false;
    bool outputEnabled = true;
    uint32_t framesPerBuffer = 256;
    // Device names; empty: the system's default device.
    std::string outputDevice;
    std::string inputDevice;
};

class AudioDriver {
public:
    virtual ~AudioDriver() = default;
    virtual const char* name() const = 0;
    // Opens the device and starts calling renderer->renderPass.
    virtual bool start(const AudioDriverConfig& config, AudioRenderer* renderer, AudioError* error) = 0;
    // Stops; when it returns no render pass runs any more.
    virtual void stop() = 0;
    // Whether the running stream delivers microphone input.
    virtual bool inputRunning() const = 0;
    // False for the offline driver: nothing renders unless asked to.
    virtual bool rendersOnItsOwnThread() const = 0;
    // Seconds per callback, 0 when unknown.
    virtual double bufferDuration() const = 0;
    // A running stream that failed (device lost); the controller's
    // housekeeping tries to restart it.
    virtual bool failed() const { return false; }
};

std::unique_ptr<AudioDriver> makeOfflineAudioDriver();
std::unique_ptr<AudioDriver> makeNullAudioDriver();
std::unique_ptr<AudioDriver> makePortAudioDriver();
