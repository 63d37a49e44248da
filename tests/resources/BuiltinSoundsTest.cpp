// The built-in sounds as the player meets them: 44100 Hz 16-bit files that
// start on their first frame, never clip, fit their length limits and sound
// the note their name promises.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <numbers>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/resources/BuiltinNames.h"

namespace fs = std::filesystem;

namespace {

constexpr int kRate = 44100;

struct Sound {
    int channels = 0;
    int rate = 0;
    int format = 0;
    std::vector<int16_t> samples;  // interleaved
    size_t frames() const { return channels ? samples.size() / size_t(channels) : 0; }
    double seconds() const { return double(frames()) / kRate; }
    std::vector<double> mono() const {
        std::vector<double> m(frames());
        for (size_t f = 0; f < m.size(); ++f) {
            for (int c = 0; c < channels; ++c) m[f] += samples[f * size_t(channels) + size_t(c)];
            m[f] /= channels * 32768.0;
        }
        return m;
    }
};

std::optional<Sound> readSound(const std::string& path) {
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    if (!f) return std::nullopt;
    Sound s;
    s.channels = info.channels;
    s.rate = info.samplerate;
    s.format = info.format;
    s.samples.resize(size_t(info.frames) * size_t(info.channels));
    s.samples.resize(size_t(sf_readf_short(f, s.samples.data(), info.frames)) * size_t(info.channels));
    sf_close(f);
    return s;
}

const std::map<std::string, Sound>& allSounds() {
    static const std::map<std::string, Sound> sounds = [] {
        std::map<std::string, Sound> m;
        for (const std::string& name : builtinSoundNames()) {
            if (auto s = readSound(soundsDir() + "/" + name + ".wav")) m[name] = std::move(*s);
        }
        return m;
    }();
    return sounds;
}

int pitchClass(const std::string& noteName) {
    static const std::map<std::string, int> kClasses = {{"C", 0},  {"Db", 1}, {"D", 2},  {"Eb", 3},
                                                         {"E", 4},  {"F", 5},  {"Gb", 6}, {"G", 7},
                                                         {"Ab", 8}, {"A", 9},  {"Bb", 10}, {"B", 11}};
    auto it = kClasses.find(noteName);
    return it == kClasses.end() ? -1 : it->second;
}

// The MIDI note a single-note sound must play, from its name and its family's
// octave (middle C = C4 = 60): saxophones, pads, halos, voices and vocal hits in
// octave 4; organs (a sixteen-foot foundation) and guitar notes in octave 3; every
// bass in octave 2, "high" one octave up. Sounds that are not single notes have none.
std::optional<int> expectedNote(const std::string& name) {
    static const std::pair<const char*, int> kFamilies[] = {
        {"Sax ", 4},  {"Organ ", 3},  {"Synth pad ", 4}, {"Halo ", 4},       {"Ou ", 4},          {"Ouoo ", 4},
        {"Uuuuu ", 4}, {"Ha ", 4},    {"Guitar ", 3},    {"Bass Piano ", 2}, {"Clean Bass ", 2}, {"Reverb Bass ", 2},
    };
    if (name.find(" chord") != std::string::npos || name.find(" poly ") != std::string::npos) return std::nullopt;
    for (const auto& [prefix, octave] : kFamilies) {
        if (name.rfind(prefix, 0) != 0) continue;
        std::string rest = name;
        int shift = 0;
        for (const char* suffix : {" long", " high"}) {
            const std::string s = suffix;
            if (rest.size() > s.size() && rest.compare(rest.size() - s.size(), s.size(), s) == 0) {
                rest.erase(rest.size() - s.size());
                if (s == " high") shift = 12;
            }
        }
        const int pc = pitchClass(rest.substr(rest.rfind(' ') + 1));
        if (pc < 0) return std::nullopt;
        return 12 * (octave + 1) + pc + shift;
    }
    return std::nullopt;
}

double midiToHz(double note) { return 440.0 * std::pow(2.0, (note - 69.0) / 12.0); }

// Fundamental frequency by the cumulative-mean-normalised difference function
// (as in the YIN estimator): the first lag whose normalised difference dips
// under the threshold, refined by a parabola. The median over several frames
// taken after the attack.
double estimateFundamental(const std::vector<double>& input) {
    // A gentle low-pass first: the stretched upper partials of low piano
    // strings otherwise pull the period estimate sharp.
    std::vector<double> x(input.size());
    double s1 = 0, s2 = 0;
    const double k = 1.0 - std::exp(-2 * std::numbers::pi * 1200.0 / kRate);
    for (size_t i = 0; i < x.size(); ++i) {
        s1 += k * (input[i] - s1);
        s2 += k * (s1 - s2);
        x[i] = s2;
    }
    constexpr size_t kWindow = 2048, kMinLag = 20, kMaxLag = 1100;  // 40 Hz to 2.2 kHz
    std::vector<double> estimates;
    for (size_t start = size_t(0.10 * kRate); start + kWindow + kMaxLag < x.size() && start < size_t(0.9 * kRate);
         start += size_t(0.1 * kRate)) {
        std::vector<double> d(kMaxLag + 1, 0.0);
        for (size_t lag = 1; lag <= kMaxLag; ++lag) {
            double sum = 0;
            for (size_t j = 0; j < kWindow; ++j) {
                const double diff = x[start + j] - x[start + j + lag];
                sum += diff * diff;
            }
            d[lag] = sum;
        }
        std::vector<double> nd(kMaxLag + 1, 1.0);
        double running = 0;
        for (size_t lag = 1; lag <= kMaxLag; ++lag) {
            running += d[lag];
            nd[lag] = running > 0 ? d[lag] * double(lag) / running : 1.0;
        }
        size_t best = 0;
        for (size_t lag = kMinLag; lag < kMaxLag; ++lag) {
            if (nd[lag] < 0.2) {
                while (lag + 1 < kMaxLag && nd[lag + 1] < nd[lag]) ++lag;
                best = lag;
                break;
            }
        }
        if (best == 0) best = size_t(std::distance(nd.begin(), std::min_element(nd.begin() + kMinLag, nd.end() - 1)));
        const double a = nd[best - 1], b = nd[best], c = nd[best + 1];
        const double denom = a - 2 * b + c;
        const double lag = double(best) + (denom != 0 ? 0.5 * (a - c) / denom : 0.0);
        estimates.push_back(kRate / lag);
    }
    if (estimates.empty()) return 0;
    std::sort(estimates.begin(), estimates.end());
    return estimates[estimates.size() / 2];
}

// Strength of each pitch class between E2 and B4, from the spectrum of the
// sound's first half second after the attack.
std::vector<double> chroma(const std::vector<double>& x) {
    const size_t start = size_t(0.08 * kRate);
    const size_t n = std::min(x.size() - std::min(x.size(), start), size_t(0.5 * kRate));
    std::vector<double> c(12, 0.0);
    for (int note = 40; note <= 71; ++note) {
        const double w = 2 * std::numbers::pi * midiToHz(note) / kRate;
        double re = 0, im = 0;
        for (size_t i = 0; i < n; ++i) {
            const double hann = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * double(i) / double(n));
            re += x[start + i] * hann * std::cos(w * double(i));
            im -= x[start + i] * hann * std::sin(w * double(i));
        }
        c[size_t(note % 12)] += std::hypot(re, im);
    }
    return c;
}

}  // namespace

TEST(BuiltinSounds, EveryNamedFileIsThereAndNothingElse) {
    std::set<std::string> expected;
    for (const std::string& n : builtinSoundNames()) expected.insert(n + ".wav");
    ASSERT_EQ(expected.size(), 88u);
    std::set<std::string> found;
    for (const auto& e : fs::directory_iterator(soundsDir())) {
        if (e.path().extension() == ".wav") found.insert(e.path().filename().string());
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(allSounds().size(), 88u) << "some files do not read back as audio";
}

TEST(BuiltinSounds, FilesArePlayableWithoutDelayOrClipping) {
    for (const auto& [name, s] : allSounds()) {
        SCOPED_TRACE(name);
        EXPECT_EQ(s.rate, kRate);
        EXPECT_EQ(s.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        EXPECT_TRUE(s.channels == 1 || s.channels == 2);
        ASSERT_GT(s.frames(), size_t(kRate / 20));

        int peak = 0;
        for (int16_t v : s.samples) peak = std::max(peak, std::abs(int(v)));
        EXPECT_LT(peak, 32767) << "clipped";
        EXPECT_NEAR(20 * std::log10(peak / 32768.0), -1.0, 0.3) << "not normalised to -1 dBFS";

        int first = 0, last = 0;
        for (int c = 0; c < s.channels; ++c) {
            first = std::max(first, std::abs(int(s.samples[size_t(c)])));
            last = std::max(last, std::abs(int(s.samples[s.samples.size() - 1 - size_t(c)])));
        }
        EXPECT_GT(first, 300) << "leading silence: the first frame is not audible";
        EXPECT_LT(last, 300) << "no fade-out at the end";

        if (name.find(" long") != std::string::npos && name != "Open Hat long") {  // drums stay short
            EXPECT_GT(s.seconds(), 3.0);
            EXPECT_LT(s.seconds(), 6.0);
        } else {
            EXPECT_LT(s.seconds(), 2.0);
        }
    }
}

TEST(BuiltinSounds, LongVariantsLastAudiblyLonger) {
    const auto& sounds = allSounds();
    const std::pair<const char*, const char*> pairs[] = {
        {"Sax C long", "Sax C"}, {"Sax A long", "Sax A"}, {"Organ F long", "Organ F"},
        {"Halo D long", "Halo C"}, {"Open Hat long", "Open Hat"}};
    for (const auto& [longName, shortName] : pairs) {
        ASSERT_TRUE(sounds.count(longName) && sounds.count(shortName));
        EXPECT_GT(sounds.at(longName).seconds(), sounds.at(shortName).seconds() + 0.5) << longName;
    }
}

TEST(BuiltinSounds, SingleNotesSoundTheirNamedPitch) {
    int checked = 0;
    std::printf("%-20s %8s %9s %9s %7s\n", "sound", "note", "want Hz", "got Hz", "cents");
    for (const auto& [name, s] : allSounds()) {
        const std::optional<int> note = expectedNote(name);
        if (!note) continue;
        ++checked;
        const double want = midiToHz(*note);
        const double got = estimateFundamental(s.mono());
        const double cents = got > 0 ? 1200.0 * std::log2(got / want) : 9999.0;
        std::printf("%-20s %8d %9.2f %9.2f %+7.1f\n", name.c_str(), *note, want, got, cents);
        EXPECT_LT(std::fabs(cents), 30.0) << name << ": wanted " << want << " Hz, measured " << got << " Hz";
    }
    EXPECT_EQ(checked, 55);  // every single-note sound of the library
}

TEST(BuiltinSounds, ChordsHaveTheirRootAndThird) {
    struct Chord {
        const char* name;
        int root;
        bool minor;
    };
    // Guitar chords: the right third clearly outweighs the wrong one, and so
    // do the root and the fifth.
    const Chord chords[] = {{"Guitar A chord", 9, false}, {"Guitar Am chord", 9, true}, {"Guitar C chord", 0, false},
                            {"Guitar D chord", 2, false}, {"Guitar Dm chord", 2, true}, {"Guitar E chord", 4, false},
                            {"Guitar Em chord", 4, true}, {"Guitar F chord", 5, false}, {"Guitar G chord", 7, false}};
    for (const Chord& chord : chords) {
        SCOPED_TRACE(chord.name);
        const std::vector<double> c = chroma(allSounds().at(chord.name).mono());
        const int third = (chord.root + (chord.minor ? 3 : 4)) % 12;
        const int wrongThird = (chord.root + (chord.minor ? 4 : 3)) % 12;
        const int fifth = (chord.root + 7) % 12;
        for (int member : {chord.root, third, fifth}) EXPECT_GT(c[size_t(member)], 2 * c[size_t(wrongThird)]) << member;
    }
    // Voice chords are open fifths on their root: root and fifth are the two
    // strongest pitch classes.
    for (const auto& [name, root] : {std::pair{"Ouoo poly C", 0}, {"Ouoo poly D", 2}, {"Ouoo poly Eb", 3},
                                     {"Ouoo poly E", 4}}) {
        const std::vector<double> c = chroma(allSounds().at(name).mono());
        std::vector<int> order(12);
        for (int i = 0; i < 12; ++i) order[size_t(i)] = i;
        std::sort(order.begin(), order.end(), [&](int a, int b) { return c[size_t(a)] > c[size_t(b)]; });
        EXPECT_EQ(std::set<int>(order.begin(), order.begin() + 2), (std::set<int>{root, (root + 7) % 12})) << name;
    }
}

TEST(BuiltinSounds, GeneratorIsDeterministic) {
    const fs::path dir = fs::temp_directory_path() / ("quillo-resgen-test-" + std::to_string(::getpid()));
    fs::remove_all(dir);
    // The generator is a build tool: leaks inside the GUI libraries it loads are not ours to report.
    const std::string command = std::string("ASAN_OPTIONS=detect_leaks=0 \"") + QUILLO_TEST_RESGEN + "\" --out \"" + (dir / "out").string() +
                                "\" --work \"" + (dir / "work").string() + "\" --soundfont \"" +
                                QUILLO_TEST_SOUNDFONT + "\" --fluidsynth \"" + QUILLO_TEST_FLUIDSYNTH +
                                "\" --only \"Sax D\" --only \"Snap\" --only \"Backspin end\" 2>/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    auto bytes = [](const fs::path& p) {
        std::ifstream f(p, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(f), {});
    };
    for (const char* name : {"Sax D", "Snap", "Backspin end"}) {
        for (const char* ext : {".wav", ".jpg"}) {
            const std::string again = bytes(dir / "out" / (std::string(name) + ext));
            EXPECT_FALSE(again.empty()) << name << ext;
            EXPECT_TRUE(again == bytes(fs::path(soundsDir()) / (std::string(name) + ext))) << name << ext << " differs";
        }
    }
    fs::remove_all(dir);
}
