#include "playback/PlaybackContext.h"

namespace {
PlaybackContext defaultContext;
PlaybackContext* current = &defaultContext;
}  // namespace

PlaybackContext& PlaybackContext::shared() { return *current; }
void PlaybackContext::setShared(PlaybackContext* context) { current = context ? context : &defaultContext; }
