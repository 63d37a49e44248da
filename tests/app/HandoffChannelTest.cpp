// Handing a file to the window that holds the library: a server in this
// process, clients on another thread and in a real quillo-cli process.
#include <QCoreApplication>
#include <atomic>
#include <future>

#include "app/handoff/HandoffChannel.h"
#include "library/store/LibraryLock.h"
#include "tests/app/AppTestSupport.h"

using namespace apptest;

namespace {

// Runs `work` on another thread while this thread serves the event loop.
template <class F>
auto whileServing(F work) {
    auto result = std::async(std::launch::async, work);
    while (result.wait_for(std::chrono::milliseconds(2)) != std::future_status::ready) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return result.get();
}

}  // namespace

TEST(HandoffChannel, TheWindowGetsTheFileAndAnswers) {
    application();
    TempDir library, state;
    std::vector<std::string> received;
    std::string answer = "ok\tBeat";
    HandoffChannel server(library.path(), [&](const std::string& path) {
        received.push_back(path);
        return answer;
    });
    std::string error;
    ASSERT_TRUE(server.listen(&error)) << error;

    // Another spelling of the same folder reaches the same window.
    HandoffReply reply = whileServing([&] { return HandoffChannel::sendFile(library.path() + "/./", "/x/Beat 1.wav"); });
    EXPECT_TRUE(reply.delivered);
    EXPECT_TRUE(reply.imported);
    EXPECT_EQ(reply.text, "Beat");
    EXPECT_EQ(received, std::vector<std::string>{"/x/Beat 1.wav"});

    answer = "error\t/x/notes.wav is not a sound file Quillo can play";
    reply = whileServing([&] { return HandoffChannel::sendFile(library.path(), "/x/notes.wav"); });
    EXPECT_TRUE(reply.delivered);
    EXPECT_FALSE(reply.imported);
    EXPECT_EQ(reply.text, "/x/notes.wav is not a sound file Quillo can play");

    TempDir otherLibrary;
    EXPECT_FALSE(HandoffChannel::sendFile(otherLibrary.path(), "/x/Beat.wav").delivered);
    // Nobody holds this library's lock yet: nothing is sent.
    EXPECT_FALSE(whileServing([&] { return HandoffChannel::sendFileToLibraryHolder(library.path(), "/x/B.wav"); })
                     .delivered);

    // quillo-cli import on a library the window holds hands the file over.
    LibraryLock::Failure failure;
    auto lock = LibraryLock::acquire(library.path(), std::chrono::milliseconds(0), &failure, nullptr, nullptr);
    ASSERT_TRUE(lock);
    answer = "ok\tFrom the window";
    writeSound(state.file("Take.wav"), 100);
    CliResult cli = whileServing([&] {
        return runCli({"--library", library.path(), "import", state.file("Take.wav")},
                      {{"XDG_STATE_HOME", state.path()}, {"QUILLO_LOCK_WAIT", "0.2"}});
    });
    EXPECT_EQ(cli.status, 0) << cli.err;
    EXPECT_EQ(cli.out, "From the window\tImported\n");
    EXPECT_EQ(received.back(), state.file("Take.wav"));
}
