#pragma once
// Hands work to the application's main thread (the one running Qt's event
// loop). Completions and progress of the movie writers arrive there, so the
// screens that receive them can touch their views directly.
#include <functional>

// Runs `task` on the main thread, later, in the order posted. Callable from
// any thread but the audio render thread. Without a Qt application object it
// runs `task` at once on the calling thread.
void postToMainThread(std::function<void()> task);
