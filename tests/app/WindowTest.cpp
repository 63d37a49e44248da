// The quillo window, offscreen on a new library: its root screens, the side
// menu, the loops list and files handed over on the command line.
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>
#include <filesystem>
#include <fstream>

#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "playback/Loopplayer.h"
#include "screens/lists/GlobalMenuVC.h"
#include "screens/lists/LoopsTVC.h"
#include "tests/app/SoundFileWriter.h"
#include "tests/app/WindowFixture.h"

Q_IMPORT_QML_PLUGIN(Quillo_AppPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_KitPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_SoundEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_TrackEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ExportPlugin)

class WindowTest : public WindowFixture {
protected:
    QQuickItem* loopsList() { return top(); }
    LoopsTVC* loops() { return loopsList()->findChild<LoopsTVC*>(); }
    double menuOffset() { return find("slidingContainer")->property("topX").toDouble(); }
    bool menuSettlesAt(double x) {
        return QTest::qWaitFor([&] { return qAbs(menuOffset() - x) < 0.5; }, 3000);
    }
    int rowNamed(const QString& name) {
        ListRows* rows = loops()->rows();
        for (int k = 0; k < rows->count(); ++k) {
            if (rows->rowAt(k)->name == name) return k;
        }
        return -1;
    }
    QQuickItem* rowItem(int row) { return WindowFixture::rowItem(find("loopsTable"), row); }

    TempDir elsewhere;
};

TEST_F(WindowTest, StartsOnTheLoopsListAndImportsTheFilesGivenToIt) {
    const std::string handed = elsewhere.file("Beat.wav");
    writeBeat(handed);
    const std::string notSound = elsewhere.file("notes.wav");
    std::ofstream(notSound) << "not a sound";
    launch({QString::fromStdString(handed), QString::fromStdString(notSound)});

    EXPECT_EQ(window->title(), "Quillo");
    EXPECT_EQ(window->size(), QSize(390, 844));
    EXPECT_EQ(window->minimumSize(), QSize(320, 568));

    // The loops list is the one screen of the stack, under a titled bar with the menu button.
    EXPECT_EQ(find("screenStack")->property("depth").toInt(), 1);
    ASSERT_NE(loops(), nullptr);
    EXPECT_EQ(loopsList()->property("title").toString(), "Loops");
    EXPECT_TRUE(find("leftBarButton")->isVisible());
    EXPECT_GE(rowNamed("Built-in loops"), 0);
    EXPECT_GE(rowNamed("Easy beat 95"), 0);
    EXPECT_EQ(find("loopsTable")->property("count").toInt(), loops()->rows()->count());

    // The sound file became a sound in "Imported" and was moved in; the text file was left alone.
    Sound* beat = CoreDater::shIns().findSoundWithName("Beat");
    ASSERT_NE(beat, nullptr);
    EXPECT_EQ(beat->inFolder()->name(), "Imported");
    EXPECT_TRUE(std::filesystem::exists(Filer::pathForWavSound("Beat")));
    EXPECT_FALSE(std::filesystem::exists(handed));
    EXPECT_TRUE(std::filesystem::exists(notSound));
    EXPECT_EQ(CoreDater::shIns().findSoundWithName("notes"), nullptr);

    // A drop takes the same way in; what is not a local file is passed over.
    writeBeat(handed);
    EXPECT_EQ(quillo->rootScreens()->importDroppedUrls(
                  {QUrl("https://example.org/Beat.wav"), QUrl::fromLocalFile(QString::fromStdString(handed))}),
              1);
    EXPECT_NE(CoreDater::shIns().findSoundWithName("Beat 2"), nullptr);
}

// A second quillo on the same library: its files go to this window (which
// holds the library's writer lock and imports them); without files it says
// the library is busy instead of opening it twice.
TEST_F(WindowTest, ASecondQuilloHandsItsFilesToTheWindowThatHoldsTheLibrary) {
    launch();
    QSignalSpy messages(quillo->rootScreens(), &RootScreens::message);
    auto runSecond = [&](QStringList args, QString* out, QString* err) {
        QProcess second;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("QT_QPA_PLATFORM", "offscreen");
        env.insert("QUILLO_AUDIO", "null");
        env.insert("QUILLO_LOCK_WAIT", "0.5");
        env.insert("XDG_STATE_HOME", QString::fromStdString(elsewhere.path()));
        second.setProcessEnvironment(env);
        second.start(QStringLiteral(QUILLO_PATH),
                     QStringList{"--library", QString::fromStdString(library.path())} + args);
        EXPECT_TRUE(second.waitForStarted());
        // The window answers from this event loop, so wait without blocking it.
        EXPECT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 60000));
        *out = QString::fromUtf8(second.readAllStandardOutput());
        *err = QString::fromUtf8(second.readAllStandardError());
        return second.exitCode();
    };

    const std::string handed = elsewhere.file("Beat.wav");
    writeBeat(handed);
    QString out, err;
    EXPECT_EQ(runSecond({QString::fromStdString(handed)}, &out, &err), 0) << err.toStdString();
    EXPECT_EQ(out.trimmed(), "Beat");
    Sound* beat = CoreDater::shIns().findSoundWithName("Beat");
    ASSERT_NE(beat, nullptr);
    EXPECT_EQ(beat->inFolder()->name(), "Imported");
    EXPECT_FALSE(std::filesystem::exists(handed));
    ASSERT_GE(messages.count(), 1);
    EXPECT_TRUE(messages.last().at(0).toString().contains("Beat"));

    // A file that is not a sound: refused by the window, reported by the second program.
    const std::string notSound = elsewhere.file("notes.wav");
    std::ofstream(notSound) << "not a sound";
    EXPECT_EQ(runSecond({QString::fromStdString(notSound)}, &out, &err), 1);
    EXPECT_FALSE(err.isEmpty());
    EXPECT_TRUE(std::filesystem::exists(notSound));

    // No files: the library is this window's; the second program does not open it.
    EXPECT_EQ(runSecond({}, &out, &err), 75) << err.toStdString();
    EXPECT_TRUE(err.contains("quillo")) << err.toStdString();
}

TEST_F(WindowTest, SideMenuOpensByButtonAndEdgeDragAndClosesByEscapeAndTap) {
    launch();
    auto* shell = quillo->rootScreens();
    EXPECT_EQ(menuOffset(), 0.0);

    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(find("leftBarButton")));
    EXPECT_TRUE(shell->sideMenuOpen());
    EXPECT_TRUE(menuSettlesAt(250));
    EXPECT_TRUE(find("globalMenu")->isVisible());

    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(shell->sideMenuOpen());
    EXPECT_TRUE(menuSettlesAt(0));

    // A drag from the left edge, past half the reveal, opens it.
    QTest::mousePress(window, Qt::LeftButton, {}, QPoint(4, 400));
    for (int x : {20, 60, 120, 160}) QTest::mouseMove(window, QPoint(x, 400));
    QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(160, 400));
    EXPECT_TRUE(shell->sideMenuOpen());
    EXPECT_TRUE(menuSettlesAt(250));

    // A tap on the part of the screen still showing closes it.
    QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(340, 400));
    EXPECT_FALSE(shell->sideMenuOpen());
    EXPECT_TRUE(menuSettlesAt(0));

    // A short drag springs back closed.
    QTest::mousePress(window, Qt::LeftButton, {}, QPoint(4, 400));
    for (int x : {20, 60}) QTest::mouseMove(window, QPoint(x, 400));
    QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(60, 400));
    EXPECT_FALSE(shell->sideMenuOpen());
    EXPECT_TRUE(menuSettlesAt(0));

    // In the narrowest window the screen still peeks out by 100.
    window->resize(320, 700);
    shell->anchorTopViewToRight();
    EXPECT_TRUE(menuSettlesAt(220));
}

TEST_F(WindowTest, FolderRowsOpenAndCloseAndLoopsPlayInPlace) {
    launch();
    const int folder = rowNamed("Built-in loops");
    ASSERT_GE(folder, 0);
    const int rowsOpen = loops()->rows()->count();

    // A second press on a loop's play button stops it; a press on another switches.
    const int easy = rowNamed("Easy beat 95");
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(findItem(rowItem(easy), "playButton")));
    EXPECT_EQ(loops()->playingRow(), easy);
    ASSERT_EQ(quillo->app()->loopplayers().size(), 1u);
    EXPECT_EQ(quillo->app()->loopplayers()[0]->loop()->name(), "Easy beat 95");
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(findItem(rowItem(easy + 1), "playButton")));
    EXPECT_EQ(loops()->playingRow(), easy + 1);
    ASSERT_EQ(quillo->app()->loopplayers().size(), 1u);
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(findItem(rowItem(easy + 1), "playButton")));
    EXPECT_EQ(loops()->playingRow(), -1);
    EXPECT_TRUE(quillo->app()->loopplayers().empty());

    // A tap on the folder closes it, in the store too, and stops what plays.
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(findItem(rowItem(easy), "playButton")));
    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(rowItem(folder)));
    EXPECT_TRUE(quillo->app()->loopplayers().empty());
    auto* builtIn = static_cast<LoopFolder*>(CoreDater::shIns().findEntity("LoopFolder", "Built-in loops"));
    ASSERT_NE(builtIn, nullptr);
    EXPECT_FALSE(builtIn->opened());
    EXPECT_EQ(loops()->rows()->count(), rowsOpen - static_cast<int>(builtIn->items().size()));
    EXPECT_EQ(rowNamed("Easy beat 95"), -1);

    QTest::mouseClick(window, Qt::LeftButton, {}, centerOf(rowItem(rowNamed("Built-in loops"))));
    EXPECT_TRUE(builtIn->opened());
    EXPECT_EQ(loops()->rows()->count(), rowsOpen);
}

TEST_F(WindowTest, SideMenuSwitchesListsOnlyFromAnotherScreenAndSilencesEverything) {
    launch();
    GlobalMenuVC menu;
    QSignalSpy shown(&menu, &GlobalMenuVC::showList);

    // On the loops list, choosing Loops again changes nothing.
    menu.setTopScreenKind("LoopFolder");
    EXPECT_EQ(menu.selectedRow(), 1);
    loops()->playItemPressed(rowNamed("Easy beat 95"));
    ASSERT_EQ(quillo->app()->loopplayers().size(), 1u);
    menu.didSelectRow(1);
    EXPECT_EQ(shown.count(), 0);
    EXPECT_EQ(quillo->app()->loopplayers().size(), 1u);

    // Another list stops all audio and asks for a new list of that kind.
    menu.didSelectRow(0);
    ASSERT_EQ(shown.count(), 1);
    EXPECT_EQ(shown.first().first().toString(), "TrackFolder");
    EXPECT_TRUE(quillo->app()->loopplayers().empty());
    EXPECT_TRUE(quillo->app()->audioController()->channels().empty());

    // From any other screen, even the list's own row shows a new list.
    menu.setTopScreenKind("OneLoopVC");
    EXPECT_EQ(menu.selectedRow(), -1);
    menu.didSelectRow(1);
    ASSERT_EQ(shown.count(), 2);
    EXPECT_EQ(shown.last().first().toString(), "LoopFolder");
}

int main(int argc, char** argv) { return runWindowTests(argc, argv); }
