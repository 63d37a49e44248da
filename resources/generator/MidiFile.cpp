#include "resources/generator/MidiFile.h"

#include <algorithm>
#include <cmath>

namespace resgen {
namespace {

constexpr int kTicksPerQuarter = 480;
constexpr int kMicrosPerQuarter = 500000;  // 120 bpm: one tick is 1/960 s
constexpr double kTicksPerSecond = kTicksPerQuarter * 1e6 / kMicrosPerQuarter;
constexpr int kDrumChannel = 9;

struct Event {
    uint32_t tick;
    int order;  // at equal ticks: set-up first, then note offs, then note ons
    std::vector<uint8_t> bytes;
    size_t seq = 0;
};

uint32_t ticks(double seconds) { return uint32_t(std::lround(seconds * kTicksPerSecond)); }

void putVariableLength(std::vector<uint8_t>& out, uint32_t value) {
    uint8_t buf[5];
    int n = 0;
    buf[n++] = uint8_t(value & 0x7F);
    while (value >>= 7) buf[n++] = uint8_t((value & 0x7F) | 0x80);
    while (n > 0) out.push_back(buf[--n]);
}

void putBigEndian(std::vector<uint8_t>& out, uint32_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) out.push_back(uint8_t(value >> (8 * i)));
}

}  // namespace

std::vector<uint8_t> midiFileForSound(const SoundSpec& sound) {
    std::vector<Event> events;
    events.push_back({0, 0, {0xFF, 0x51, 0x03, uint8_t(kMicrosPerQuarter >> 16), uint8_t(kMicrosPerQuarter >> 8),
                             uint8_t(kMicrosPerQuarter & 0xFF)}});
    int nextMelodic = 0;
    uint32_t lastTick = 0;
    for (const Layer& layer : sound.layers) {
        const bool drum = layer.channel == kDrumChannel;
        const uint8_t ch = uint8_t(drum ? kDrumChannel : nextMelodic++);
        auto cc = [&](uint8_t controller, int value) {
            events.push_back({0, 0, {uint8_t(0xB0 | ch), controller, uint8_t(std::clamp(value, 0, 127))}});
        };
        if (!drum) cc(0, 0);  // bank select: the General MIDI bank
        events.push_back({0, 0, {uint8_t(0xC0 | ch), uint8_t(layer.program)}});
        cc(7, 110);  // volume
        cc(10, 64);  // pan centre
        cc(91, sound.reverb);
        cc(93, sound.chorus);
        std::vector<int> notes = layer.notes;
        std::sort(notes.begin(), notes.end());
        for (size_t i = 0; i < notes.size(); ++i) {
            const double start = 0.001 * layer.strumMs * double(i);
            const uint32_t on = ticks(start);
            const uint32_t off = ticks(start + layer.hold);
            const auto key = uint8_t(notes[i]);
            events.push_back({on, 2, {uint8_t(0x90 | ch), key, uint8_t(std::clamp(layer.velocity, 1, 127))}});
            events.push_back({off, 1, {uint8_t(0x80 | ch), key, 0}});
            lastTick = std::max(lastTick, off);
        }
    }
    for (size_t i = 0; i < events.size(); ++i) events[i].seq = i;
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
        if (a.tick != b.tick) return a.tick < b.tick;
        if (a.order != b.order) return a.order < b.order;
        return a.seq < b.seq;  // otherwise in the order they were made
    });

    std::vector<uint8_t> track;
    uint32_t now = 0;
    for (const Event& e : events) {
        putVariableLength(track, e.tick - now);
        track.insert(track.end(), e.bytes.begin(), e.bytes.end());
        now = e.tick;
    }
    putVariableLength(track, lastTick + ticks(0.05) - now);
    track.insert(track.end(), {0xFF, 0x2F, 0x00});  // end of track

    std::vector<uint8_t> file = {'M', 'T', 'h', 'd'};
    putBigEndian(file, 6, 4);
    putBigEndian(file, 0, 2);  // format 0
    putBigEndian(file, 1, 2);  // one track
    putBigEndian(file, kTicksPerQuarter, 2);
    file.insert(file.end(), {'M', 'T', 'r', 'k'});
    putBigEndian(file, uint32_t(track.size()), 4);
    file.insert(file.end(), track.begin(), track.end());
    return file;
}

}  // namespace resgen
