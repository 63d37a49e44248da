#include "resources/generator/Effects.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace resgen {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kRate = kSampleRate;

// xorshift64*: small, fast and the same on every machine.
class Noise {
public:
    explicit Noise(uint64_t seed) : state_(seed ? seed : 0x9E3779B97F4A7C15ull) {}
    double uniform() {  // [0, 1)
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return double((state_ * 0x2545F4914F6CDD1Dull) >> 11) * (1.0 / 9007199254740992.0);
    }
    double white() { return 2.0 * uniform() - 1.0; }
    double between(double lo, double hi) { return lo + (hi - lo) * uniform(); }

private:
    uint64_t state_;
};

// A second-order filter section (the usual audio cookbook forms).
class Biquad {
public:
    static Biquad lowPass(double freq, double q) { return make(freq, q, Kind::Low); }
    static Biquad highPass(double freq, double q) { return make(freq, q, Kind::High); }
    static Biquad bandPass(double freq, double q) { return make(freq, q, Kind::Band); }

    // Moves the corner without clearing the state (for swept filters).
    void retune(double freq, double q) { *this = make(freq, q, kind_, z1_, z2_); }

    double process(double x) {
        const double y = b0_ * x + z1_;
        z1_ = b1_ * x - a1_ * y + z2_;
        z2_ = b2_ * x - a2_ * y;
        return y;
    }

private:
    enum class Kind { Low, High, Band };
    static Biquad make(double freq, double q, Kind kind, double z1 = 0, double z2 = 0) {
        const double w = 2.0 * kPi * std::min(freq, 0.45 * kRate) / kRate;
        const double alpha = std::sin(w) / (2.0 * q);
        const double c = std::cos(w);
        double b0 = 0, b1 = 0, b2 = 0;
        switch (kind) {
            case Kind::Low: b0 = (1 - c) / 2; b1 = 1 - c; b2 = (1 - c) / 2; break;
            case Kind::High: b0 = (1 + c) / 2; b1 = -(1 + c); b2 = (1 + c) / 2; break;
            case Kind::Band: b0 = alpha; b1 = 0; b2 = -alpha; break;
        }
        const double a0 = 1 + alpha;
        Biquad f;
        f.kind_ = kind;
        f.b0_ = b0 / a0;
        f.b1_ = b1 / a0;
        f.b2_ = b2 / a0;
        f.a1_ = -2 * c / a0;
        f.a2_ = (1 - alpha) / a0;
        f.z1_ = z1;
        f.z2_ = z2;
        return f;
    }
    Kind kind_ = Kind::Low;
    double b0_ = 1, b1_ = 0, b2_ = 0, a1_ = 0, a2_ = 0, z1_ = 0, z2_ = 0;
};

size_t framesFor(double seconds) { return size_t(seconds * kRate); }

// What is pressed into the record the turntable effects play: a sung "ahh"
// (a 165 Hz voice through two formants), a kick on every half second and
// some surface noise. It is a function of the groove position in seconds, so
// moving the record by hand gives the right pitch in either direction.
class Record {
public:
    Record() {
        Noise n(0x5eed0001);
        for (double& v : grit_) v = n.white();
    }
    double at(double pos) const {
        constexpr double f0 = 165.0;
        double voice = 0;
        for (int k = 1; k <= 24; ++k) {
            const double f = k * f0;
            const double formants = 1.0 / (1.0 + std::pow((f - 750.0) / 180.0, 2)) +
                                    0.6 / (1.0 + std::pow((f - 1200.0) / 220.0, 2)) + 0.08 / k;
            voice += formants * std::sin(2 * kPi * f * pos + 0.7 * k);
        }
        const double beat = std::fmod(pos + 100.0, 0.5);  // the offset keeps it positive
        const double kick = std::exp(-beat / 0.09) * std::sin(2 * kPi * (55.0 * beat + 40.0 * beat * std::exp(-beat / 0.03)));
        const double g = pos * 8000.0 + 1e6;  // noise grain per 1/8000 s of groove
        const auto i = size_t(g);
        const double fr = g - double(i);
        const double grit = grit_[i % kGrit] * (1 - fr) + grit_[(i + 1) % kGrit] * fr;
        return 0.55 * voice + 0.9 * kick + 0.06 * grit;
    }

private:
    static constexpr size_t kGrit = 8192;
    double grit_[kGrit];
};

// Plays the record with the platter's speed given frame by frame (1 is normal,
// negative is backwards). The cartridge's output falls as the record slows, and
// a speed-dependent whoosh rides on top, as on a real deck.
std::vector<double> spin(const Record& record, const std::vector<double>& speed, double start, double whooshLevel) {
    std::vector<double> out(speed.size());
    Noise noise(0x5eed0002);
    Biquad whoosh = Biquad::bandPass(800.0, 1.2);
    double pos = start;
    for (size_t i = 0; i < speed.size(); ++i) {
        const double v = speed[i];
        const double a = std::fabs(v);
        const double level = std::min(1.0, a * 1.4);
        if (i % 32 == 0) whoosh.retune(300.0 + 1500.0 * a, 1.2);
        const double w = whoosh.process(noise.white()) * whooshLevel * std::min(1.0, a);
        out[i] = record.at(pos) * level + w;
        pos += v / kRate;
    }
    return out;
}

Audio mono(std::vector<double> samples) {
    Audio a;
    a.channels = 1;
    a.samples.assign(samples.begin(), samples.end());
    return a;
}

// Two forward-and-back strokes by hand, the second faster, the fader opening
// for each forward push.
Audio scratch() {
    const Record record;
    const double strokes[][2] = {{0.0, 0.34}, {0.36, 0.22}, {0.60, 0.22}};  // start, length in seconds
    std::vector<double> speed(framesFor(0.86), 0.0);
    std::vector<double> fader(speed.size(), 0.0);
    for (const auto& s : strokes) {
        const size_t from = framesFor(s[0]);
        const size_t n = framesFor(s[1]);
        const double travel = 0.16;  // seconds of groove pushed forward, then pulled back
        for (size_t i = 0; i < n && from + i < speed.size(); ++i) {
            const double x = double(i) / double(n);
            speed[from + i] = travel * kPi / s[1] * std::sin(2 * kPi * x);  // d/dt of travel (1 - cos) / 2
            fader[from + i] = x < 0.5 ? std::min(1.0, 40.0 * x) * std::min(1.0, 40.0 * (0.5 - x)) + 0.25 : 0.25;
        }
    }
    std::vector<double> out = spin(record, speed, 0.25, 0.15);
    for (size_t i = 0; i < out.size(); ++i) out[i] *= fader[i];
    return mono(std::move(out));
}

// The record plays, is spun hard backwards and coasts to a stop.
Audio backspin() {
    const Record record;
    std::vector<double> speed(framesFor(1.6));
    for (size_t i = 0; i < speed.size(); ++i) {
        const double t = double(i) / kRate;
        if (t < 0.3) {
            speed[i] = 1.0;
        } else if (t < 0.38) {
            speed[i] = 1.0 - 5.0 * (t - 0.3) / 0.08;  // the hand throws it back
        } else {
            speed[i] = -4.0 * std::exp(-(t - 0.38) / 0.3);
        }
    }
    return mono(spin(record, speed, 0.0, 0.35));
}

// The end of a backspin: the whirl dies away, then the record catches and
// drops back in on the beat.
Audio backspinEnd() {
    const Record record;
    std::vector<double> speed(framesFor(1.05));
    for (size_t i = 0; i < speed.size(); ++i) {
        const double t = double(i) / kRate;
        if (t < 0.55) {
            speed[i] = -3.0 * std::pow(1.0 - t / 0.55, 2.0);
        } else {
            speed[i] = std::min(1.0, (t - 0.55) / 0.05);
        }
    }
    // Land so that the beat's kick falls just after the record is back up to speed.
    return mono(spin(record, speed, 0.94, 0.35));
}

// Paint hissing out of the nozzle: bright band-limited noise with a little
// pressure flutter and a louder first burst.
Audio spraypaint() {
    Noise noise(0x5eed0003);
    Biquad hp1 = Biquad::highPass(2600.0, 0.7), hp2 = Biquad::highPass(2600.0, 0.7);
    Biquad lp = Biquad::lowPass(11000.0, 0.7);
    const size_t n = framesFor(1.25);
    std::vector<double> out(n);
    double flutter = 0, target = 0;
    for (size_t i = 0; i < n; ++i) {
        const double t = double(i) / kRate;
        if (i % 2205 == 0) target = 0.12 * noise.white();
        flutter += (target - flutter) * 0.0005;
        const double attack = std::min(1.0, t / 0.008);
        const double release = std::min(1.0, (1.25 - t) / 0.09);
        const double burst = 1.0 + 0.35 * std::exp(-t / 0.05);
        out[i] = lp.process(hp2.process(hp1.process(noise.white()))) * attack * release * burst * (1.0 + flutter);
    }
    return mono(std::move(out));
}

// A struck piece of metal: decaying inharmonic partials.
struct Mode {
    double freq, decay, level;
};

void strike(std::vector<double>& out, double at, double strength, const std::vector<Mode>& modes, Noise& noise) {
    const size_t from = framesFor(at);
    for (const Mode& m : modes) {
        const double phase = 2 * kPi * noise.uniform();
        const double f = m.freq * (1.0 + 0.01 * noise.white());
        if (f > 0.45 * kRate) continue;  // above what the file can hold
        const size_t n = std::min(out.size() - std::min(out.size(), from), framesFor(6.0 * m.decay));
        for (size_t i = 0; i < n; ++i) {
            const double t = double(i) / kRate;
            out[from + i] += strength * m.level * std::exp(-t / m.decay) * std::sin(2 * kPi * f * t + phase);
        }
    }
    // The contact click itself.
    Biquad click = Biquad::highPass(3000.0, 0.7);
    for (size_t i = 0; i < framesFor(0.003) && from + i < out.size(); ++i) {
        out[from + i] += strength * 0.5 * click.process(noise.white()) * (1.0 - double(i) / framesFor(0.003));
    }
}

// The mixing ball rattling inside a shaken can: two knocks per shake.
Audio spraypaintShake() {
    Noise noise(0x5eed0004);
    const std::vector<Mode> ball = {{2900, 0.018, 1.0}, {4650, 0.012, 0.7}, {6800, 0.008, 0.5}, {1250, 0.035, 0.6}};
    std::vector<double> out(framesFor(1.2), 0.0);
    for (int shake = 0; shake < 8; ++shake) {
        const double t = 0.005 + shake * 0.142 + 0.006 * noise.white();
        strike(out, std::max(0.0, t), 1.0 - 0.04 * shake, ball, noise);
        strike(out, t + 0.068 + 0.004 * noise.white(), 0.65, ball, noise);
    }
    return mono(std::move(out));
}

// A steel washer dropped on a hard floor: a bright clink, then shorter,
// quicker bounces, each striking the ring's modes a little differently.
Audio washer() {
    Noise noise(0x5eed0005);
    std::vector<double> out(framesFor(0.8), 0.0);
    const double bounces[][2] = {{0.0, 1.0}, {0.19, 0.55}, {0.31, 0.36}, {0.39, 0.24}, {0.44, 0.15}, {0.47, 0.09}};
    for (const auto& b : bounces) {
        std::vector<Mode> ring;
        const double ratios[] = {1.0, 1.71, 2.93, 4.22, 5.61, 7.34};
        const double decays[] = {0.16, 0.11, 0.075, 0.05, 0.035, 0.025};
        for (int m = 0; m < 6; ++m) ring.push_back({3100.0 * ratios[m], decays[m], noise.between(0.4, 1.0)});
        strike(out, b[0], b[1], ring, noise);
    }
    return mono(std::move(out));
}

}  // namespace

Audio synthesiseEffect(Effect effect) {
    switch (effect) {
        case Effect::Scratch: return scratch();
        case Effect::Backspin: return backspin();
        case Effect::BackspinEnd: return backspinEnd();
        case Effect::Spraypaint: return spraypaint();
        case Effect::SpraypaintShake: return spraypaintShake();
        case Effect::Washer: return washer();
        case Effect::None: break;
    }
    return {};
}

}  // namespace resgen
