// quillo-cli play-file FILE [--seconds S]: plays a sound file through the
// audio device, or the null device when there is none (or QUILLO_AUDIO=null),
// until it ends, Ctrl-C, or S seconds have passed.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/cli/Commands.h"
#include "engine/AudioController.h"
#include "engine/AudioFilePlayer.h"

namespace {

volatile std::sig_atomic_t gInterrupted = 0;
void onInterrupt(int) { gInterrupted = 1; }

}  // namespace

int runPlayFile(CliContext& context) {
    CliArgs args(context.args);
    const std::optional<std::string> secondsText = args.take("--seconds");
    if (!args.error().empty() || args.rest().size() != 1 || args.rest()[0].rfind("--", 0) == 0) {
        if (!args.error().empty()) std::fprintf(stderr, "quillo-cli play-file: %s\n", args.error().c_str());
        std::fprintf(stderr, "usage: quillo-cli play-file FILE [--seconds S]\n");
        return 2;
    }
    double limit = -1;
    if (secondsText) {
        char* end = nullptr;
        limit = std::strtod(secondsText->c_str(), &end);
        if (!end || *end || limit < 0) {
            std::fprintf(stderr, "quillo-cli play-file: --seconds needs a number of seconds, not \"%s\"\n",
                         secondsText->c_str());
            return 2;
        }
    }
    const std::string& file = args.rest()[0];

    RunLoopMainThread main;
    AudioControllerOptions options;
    options.mainThread = &main;
    AudioController controller(AudioController::nonInterleaved16BitStereoAudioDescription(), false, options);
    AudioError error;
    auto player = AudioFilePlayer::audioFilePlayerWithURL(file, &controller, &error);
    if (!player) {
        std::fprintf(stderr, "quillo-cli play-file: %s: %s\n", file.c_str(), error.localizedDescription.c_str());
        return 1;
    }
    if (!controller.start(&error)) {
        std::fprintf(stderr, "quillo-cli play-file: cannot start audio: %s\n", error.localizedDescription.c_str());
        return 1;
    }
    bool finished = false;
    player->setRemoveUponFinish(true);
    player->completionBlock = [&finished] { finished = true; };
    std::printf("Playing %s (%.2f s) through the %s device\n", file.c_str(), player->duration(),
                controller.driverName());
    std::fflush(stdout);

    gInterrupted = 0;
    auto previous = std::signal(SIGINT, onInterrupt);
    controller.addChannels({player});
    const auto start = std::chrono::steady_clock::now();
    main.runUntil(
        [&] {
            const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            return finished || gInterrupted || (limit >= 0 && elapsed >= limit);
        },
        std::chrono::hours(24 * 365));
    std::signal(SIGINT, previous);
    controller.removeChannels({player});
    controller.stop();
    if (gInterrupted) std::printf("Stopped\n");
    return 0;
}
