#pragma once
// A deliberately plain, frame-by-frame model of one loop-player slot and one
// track-loop-player slot, written straight from the rules: used to check the
// real players, which work in spans between events.
#include <cstdint>
#include <string>
#include <vector>

struct RefSound {
    std::vector<int16_t> left, right;
    uint32_t length() const { return static_cast<uint32_t>(left.size()); }
    uint32_t byteSize() const { return 2 * length(); }
};

struct RefEvent {
    std::string what;  // "tact", "start", "stop", "end", "square", "ttact"
    int value;
    bool operator==(const RefEvent& o) const { return what == o.what && value == o.value; }
};

struct RefSlot {
    const RefSound* sound = nullptr;
    uint16_t mask = 0;
    uint64_t totalFrames = 0, nextBeatFrame = 0;
    bool needStart = false, playing = false, endEarly = false;
    uint32_t position = 0;
    uint16_t tact = 16;
    uint16_t square = 0;  // track rows only
};

// One frame of a slot's sound; answers true when the sound ran out here.
inline bool refSoundFrame(RefSlot& s, uint32_t k, uint32_t& c, int16_t* outL, int16_t* outR) {
    if (!s.needStart && !s.playing) return false;
    bool ranOut = false;
    s.playing = true;
    if (s.needStart) {
        s.position = 0;
        c = 0;
    }
    uint32_t p = s.position + c;
    if (p < s.sound->length()) {
        outL[k] = s.sound->left[p];
        outR[k] = s.sound->right[p];
    } else {
        outL[k] = outR[k] = 0;
        s.position = 0;
        s.playing = false;
        ranOut = true;
    }
    s.needStart = false;
    return ranOut;
}

inline uint64_t refFramesPerStep(float bpm) { return static_cast<uint64_t>(44100.0 / (double(bpm) * 4.0 / 60.0)); }

struct RefLoop {
    RefSlot slot[8];
    bool paused = false, ended = false;
    float bpm = 120;
    uint64_t repeatTimes = ~0ull;

    // Renders `n` frames of slot i into out (left, right), appending events.
    void render(int i, uint32_t n, int16_t* outL, int16_t* outR, std::vector<RefEvent>& ev) {
        if (paused) return;
        RefSlot& s = slot[i];
        uint64_t F = refFramesPerStep(bpm);
        uint64_t E = repeatTimes == ~0ull ? ~0ull : repeatTimes * F * 16;
        auto end = [&] {
            if (i != 0 || ended) return;
            ended = true;
            ev.push_back({"end", 0});
        };
        if (s.totalFrames >= E) {
            if (n) outL[0] = outR[0] = 0;
            end();
            return;
        }
        uint32_t c = 0;
        for (uint32_t k = 0; k < n; ++k) {
            if (s.totalFrames == E) {
                outL[k] = outR[k] = 0;
                end();
                return;
            }
            if (s.nextBeatFrame == s.totalFrames) {
                s.nextBeatFrame += F;
                s.tact = s.tact + 1 >= 16 ? 0 : s.tact + 1;
                ev.push_back({"tact", s.tact});
                if ((s.mask >> (15 - s.tact)) & 1) {
                    s.needStart = true;
                    ev.push_back({"start", i});
                }
                int nx = s.tact + 1 == 16 ? 0 : s.tact + 1;
                if ((s.mask >> (15 - nx)) & 1) s.endEarly = true;
            }
            if (s.nextBeatFrame == s.totalFrames + (F >> 1) && s.endEarly) {
                ev.push_back({"stop", i});
                s.endEarly = false;
            }
            if (refSoundFrame(s, k, c, outL, outR)) ev.push_back({"stop", i});
            s.totalFrames++;
            c++;
        }
        if (s.playing) s.position += c;
        if (s.position >= s.sound->byteSize()) {
            ev.push_back({"stop", i});
            s.position = 0;
        }
    }
};

struct RefTrackRow {
    RefSlot slot[8];
    uint16_t parts[8] = {};
    uint64_t trackLen = 4;
    bool repeat = false, paused = false, ended = false, reports = false;
    float bpm = 120;

    void render(int i, uint32_t n, int16_t* outL, int16_t* outR, std::vector<RefEvent>& ev) {
        if (paused || ended) return;
        RefSlot& s = slot[i];
        uint64_t F = refFramesPerStep(bpm);
        uint32_t c = 0;
        for (uint32_t k = 0; k < n; ++k) {
            if (s.nextBeatFrame == s.totalFrames) {
                s.nextBeatFrame += F;
                if (s.tact == 15) {
                    s.square++;
                    if (s.square >= trackLen) {
                        if (repeat) {
                            s.totalFrames = s.nextBeatFrame = 0;
                            s.needStart = s.playing = false;
                            s.position = 0;
                            s.tact = 16;
                            s.square = 0;
                            if (reports) ev.push_back({"square", 0});  // from every slot
                            s.nextBeatFrame += F;
                        } else {
                            outL[k] = outR[k] = 0;
                            if (i == 0 && !ended && reports) {
                                ended = true;
                                ev.push_back({"end", 0});
                            }
                            return;
                        }
                    }
                    if (i == 0 && reports) ev.push_back({"square", s.square});
                }
                s.tact = s.tact + 1 > 15 ? 0 : s.tact + 1;
                if (i == 0 && reports) ev.push_back({"ttact", s.tact});
                bool on = s.square / 16 < 8 && ((parts[s.square / 16] >> (15 - s.square % 16)) & 1);
                if (on && ((s.mask >> (15 - s.tact)) & 1)) s.needStart = true;
            }
            refSoundFrame(s, k, c, outL, outR);  // a track row does not report it
            s.totalFrames++;
            c++;
        }
        if (s.playing) s.position += c;
        if (s.position >= s.sound->byteSize()) s.position = 0;
    }
};
