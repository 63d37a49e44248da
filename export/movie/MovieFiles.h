#pragma once
// The scratch files of movie making, all in the program's temporary folder:
// the captured audio, the filmed (or still) movie, and the two joined.
#include <string>

#include "recording/Recorder.h"

namespace movie_files {

inline constexpr const char* kCapturedAudio = Recorder::kScratchFileName;  // what the recorder writes
inline constexpr const char* kFilmedMovie = "tempGlvid.mov";
inline constexpr const char* kMuxedMovie = "tempaudvid.mov";

// The one place that decides where the scratch files live.
std::string temporaryPath(const std::string& fileName);

}  // namespace movie_files
