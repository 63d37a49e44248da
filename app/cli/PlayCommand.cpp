// quillo-cli play loop|track|sound NAME [--seconds S]: plays live through the
// sound card (or the silent null device) until Ctrl-C or S seconds, showing
// the current square and step on one refreshing line.
#include <csignal>
#include <cstdio>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "engine/AudioFilePlayer.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "playback/Loopplayer.h"
#include "playback/MainThreadDelegates.h"
#include "playback/Trackplayer.h"

namespace {

volatile std::sig_atomic_t interrupted = 0;
void onInterrupt(int) { interrupted = 1; }

// Shows progress on the main thread, fed by the players' reports.
struct StatusLine : LoopplayerDelegate, TrackplayerDelegate {
    int square = 0, step = 0;
    bool finished = false;
    void show() {
        std::printf("\rsquare %3d  step %2d ", square, step + 1);
        std::fflush(stdout);
    }
    void animateTact(uint16_t s) override {
        step = s;
        show();
    }
    void animateStartPlaying(int) override {}
    void animateStopPlaying(int) override {}
    void loopEndRepeating() override { finished = true; }
    void animatePlayingSquare(uint16_t s) override { square = s; }
    void animatePlayingTact(uint16_t s) override {
        step = s;
        show();
    }
    void trackFinishd() override { finished = true; }
};

}  // namespace

int runPlay(CliContext& context) {
    CliArgs args(context.args);
    auto secondsText = args.take("--seconds");
    const auto& rest = args.rest();
    if (!args.error().empty() || rest.size() != 2 || (rest[0] != "loop" && rest[0] != "track" && rest[0] != "sound")) {
        std::fprintf(stderr, "usage: quillo-cli play loop|track|sound NAME [--seconds S]\n");
        return 2;
    }
    double seconds = 0.0;
    if (secondsText) {
        auto s = CliArgs::seconds("--seconds", *secondsText, 0.0, 86400.0);
        if (!s) return 2;
        seconds = *s;
    }
    CliSession session(context, AudioDriverKind::Automatic, LibraryAccess::Read);
    AudioController* controller = session.app->audioController();
    StatusLine status;
    std::unique_ptr<LoopplayerMainThreadDelegate> loopBridge;
    std::unique_ptr<TrackplayerMainThreadDelegate> trackBridge;
    bool soundDone = false;

    if (rest[0] == "loop") {
        Loop* loop = session.loopNamed(rest[1]);
        if (!loop) return 1;
        loopBridge = std::make_unique<LoopplayerMainThreadDelegate>(controller, &status);
        Loopplayer::create(loop, loopBridge.get());
    } else if (rest[0] == "track") {
        Track* track = session.trackNamed(rest[1]);
        if (!track) return 1;
        trackBridge = std::make_unique<TrackplayerMainThreadDelegate>(controller, &status);
        Trackplayer::create(track, trackBridge.get(), 0, true);
    } else {
        Sound* sound = session.soundNamed(rest[1]);
        if (!sound) return 1;
        AudioError error;
        auto player = AudioFilePlayer::audioFilePlayerWithURL(Filer::urlForSound(sound), controller, &error);
        if (!player) {
            std::fprintf(stderr, "quillo-cli: cannot play \"%s\": %s\n", sound->name().c_str(),
                         error.localizedDescription.c_str());
            return 1;
        }
        player->setRemoveUponFinish(true);
        player->completionBlock = [&soundDone] { soundDone = true; };
        session.app->oneshot = player;
        controller->addChannels({player});
        std::printf("playing \"%s\" (%.2f s)\n", sound->name().c_str(), player->duration());
    }

    std::signal(SIGINT, onInterrupt);
    auto start = std::chrono::steady_clock::now();
    while (!interrupted && !status.finished && !soundDone) {
        session.mainThread.runUntil([] { return interrupted != 0; }, std::chrono::milliseconds(50));
        controller->pollForMessageResponses();
        double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (seconds > 0 && elapsed >= seconds) break;
    }
    std::signal(SIGINT, SIG_DFL);
    std::printf("\n");
    session.app->removeAllChannelsFromAC();
    session.app->removeOnesht();
    return 0;
}
