// quillo-cli export, run as the separate program it is, on a fresh library
// (built-in content) with the silent null device.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include "tests/export/MovieTestSupport.h"

namespace {

struct CliRun {
    int status = -1;
    QString out, err;
};

CliRun cli(const QTemporaryDir& dir, const QStringList& args) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_CONFIG_HOME", dir.filePath("config"));  // no mail account set up
    env.insert("XDG_STATE_HOME", dir.filePath("state"));
    env.insert("QT_QPA_PLATFORM", "offscreen");
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(dir.path());
    p.start(QUILLO_CLI_PATH, QStringList{"--library", dir.filePath("library")} + args);
    p.waitForFinished(120000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, p.readAllStandardOutput(),
            p.readAllStandardError()};
}

}  // namespace

TEST(CliExport, LoopVideoToAFileAndWhatItRefuses) {
    QTemporaryDir dir;
    const CliRun movie = cli(dir, {"export", "loop", "Easy beat 95", "--video", "--format", "1:1", "-o", "beat.mov"});
    ASSERT_EQ(movie.status, 0) << movie.err.toStdString();
    EXPECT_EQ(movie.out.trimmed(), "File's saved");
    const ProbedMovie probed = ffprobe(dir.filePath("beat.mov").toStdString());
    ASSERT_TRUE(probed.stream("video") && probed.stream("audio"));
    EXPECT_EQ(probed.stream("video")->codec, "h264");
    EXPECT_EQ(probed.stream("video")->width, probed.stream("video")->height);  // 1:1
    // One bar at 95 bpm (16 steps of 6963 frames), the lead-in trimmed off, the tail kept.
    EXPECT_GT(probed.stream("audio")->duration, 16 * 6963 / 44100.0 - 0.05);
    EXPECT_LT(probed.stream("audio")->duration, 16 * 6963 / 44100.0 + 0.5);

    const CliRun noAccount = cli(dir, {"export", "sound", "Kick", "--mail", "you@example.org"});
    EXPECT_EQ(noAccount.status, 1);
    EXPECT_TRUE(noAccount.err.contains("no mail account")) << noAccount.err.toStdString();
    const CliRun unknown = cli(dir, {"export", "loop", "No such loop", "-o", "x.wav"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_FALSE(QFile::exists(dir.filePath("x.wav")));
    for (const QStringList& bad : {QStringList{"export", "loop", "Easy beat 95"},
                                   QStringList{"export", "loop", "Easy beat 95", "--save", "-o", "a.wav"},
                                   QStringList{"export", "folder", "Drums", "-o", "a.wav"},
                                   QStringList{"export", "loop", "Easy beat 95", "--repeats", "3", "--save"}})
        EXPECT_EQ(cli(dir, bad).status, 2) << bad.join(' ').toStdString();
}
