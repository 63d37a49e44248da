#pragma once
// The sound cards the device driver can open, and the user's choice of them:
// devices by name (as the settings store them) and the buffer size.
#include <cstdint>
#include <string>
#include <vector>

struct AudioDeviceChoice {
    static constexpr uint32_t kMinFrames = 32;
    static constexpr uint32_t kMaxFrames = 4096;
    std::string outputDevice;  // empty: the system's default device
    std::string inputDevice;   // empty: the system's default device
    uint32_t framesPerBuffer = 256;
    bool operator==(const AudioDeviceChoice&) const = default;
};

struct AudioDeviceNames {
    std::vector<std::string> outputs, inputs;
};

// The devices present now, by name. Both lists are empty without a sound card.
// Main thread; never while the driver is being rebuilt on another thread.
AudioDeviceNames listAudioDevices();
