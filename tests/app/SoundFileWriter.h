#pragma once
// A short, real WAV file for the tests that hand files over to Quillo.
#include <sndfile.h>

#include <string>
#include <vector>

inline void writeBeat(const std::string& path, int frames = 1000) {
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<short> data(static_cast<size_t>(frames), 1234);
    sf_writef_short(f, data.data(), frames);
    sf_close(f);
}
