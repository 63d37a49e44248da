// Launching the application on a library, and files handed over by other programs.
#include <QCoreApplication>
#include <QLocale>
#include <QSettings>
#include <QTranslator>
#include <filesystem>
#include <fstream>

#include "app/AppDelegate.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "tests/app/AppTestSupport.h"
#include "tests/app/SoundFileWriter.h"
#include "tests/library/TestStore.h"

class AppDelegateTest : public ::testing::Test {
protected:
    std::unique_ptr<AppDelegate> launch() {
        AppDelegateOptions options;
        options.libraryFolder = library.path();
        options.settingsFile = settingsFile();
        options.driver = AudioDriverKind::Offline;
        options.mainThread = &mainThread;
        auto app = std::make_unique<AppDelegate>(options);
        app->didFinishLaunching();
        return app;
    }
    std::string settingsFile() const { return library.file("settings.ini"); }

    TempDir library, elsewhere;
    RunLoopMainThread mainThread;
};

TEST_F(AppDelegateTest, FirstLaunchFillsTheLibraryAndSetsTheDefaults) {
    auto app = launch();
    EXPECT_EQ(app->usersArtistName, "You");
    EXPECT_TRUE(app->autotrimRecords);
    EXPECT_FALSE(app->recordToStereo);
    EXPECT_EQ(CoreDater::shIns().getAllItemsOfEntity("Sound").size(), 88u);
    EXPECT_EQ(CoreDater::shIns().getAllItemsOfEntity("Loop").size(), 18u);
    EXPECT_TRUE(app->audioController()->running());
    app->removeAllChannelsFromAC();  // nothing alive: harmless
    EXPECT_TRUE(app->audioController()->channels().empty());
}

TEST_F(AppDelegateTest, SwitchesReturnToTrimOnStereoOffAtEveryLaunch) {
    launch().reset();
    {
        QSettings s(QString::fromStdString(settingsFile()), QSettings::IniFormat);
        s.setValue("autotrimRecords", false);
        s.setValue("recordToStereo", true);
        s.setValue("usersArtistName", "Mo");
    }
    auto app = launch();
    EXPECT_TRUE(app->autotrimRecords);
    EXPECT_FALSE(app->recordToStereo);
    EXPECT_EQ(app->usersArtistName, "Mo");
}

TEST_F(AppDelegateTest, OneSoundLeftMeansNoBuiltInContentIsAdded) {
    {
        auto app = launch();
        auto& d = CoreDater::shIns();
        for (ManagedObject* o : d.getAllItemsOfEntity("Loop")) d.deleteObject(o);
        auto sounds = d.getAllItemsOfEntity("Sound");
        for (size_t k = 1; k < sounds.size(); ++k) d.deleteObject(sounds[k]);
        d.save();
    }
    auto app = launch();
    EXPECT_EQ(CoreDater::shIns().getAllItemsOfEntity("Sound").size(), 1u);
    EXPECT_TRUE(CoreDater::shIns().getAllItemsOfEntity("Loop").empty());
}

TEST_F(AppDelegateTest, HandedOverFilesBecomeNumberedSoundsInImported) {
    auto app = launch();
    for (const char* expected : {"Beat", "Beat 2"}) {
        std::string handed = elsewhere.file("Beat.wav");
        writeBeat(handed);
        Sound* s = app->handleOpenURL("file://" + handed);
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->name(), expected);
        EXPECT_EQ(s->inFolder()->name(), "Imported");
        EXPECT_EQ(s->artist(), "You");
        EXPECT_TRUE(std::filesystem::exists(Filer::pathForWavSound(expected)));
        EXPECT_FALSE(std::filesystem::exists(handed));
    }
    // Not audio: refused, nothing changes, the file stays where it was.
    std::string text = elsewhere.file("notes.wav");
    std::ofstream(text) << "not a sound";
    EXPECT_EQ(app->handleOpenURL(text), nullptr);
    EXPECT_TRUE(std::filesystem::exists(text));
    EXPECT_EQ(CoreDater::shIns().findSoundWithName("notes"), nullptr);
}

TEST_F(AppDelegateTest, LaunchLoadsTheTranslationForTheUsersLanguage) {
    const char* lrelease = "/usr/lib/qt6/bin/lrelease";
    if (!std::filesystem::exists(lrelease)) GTEST_SKIP() << "no lrelease here (qt6-l10n-tools) to make a translation";
    QCoreApplication& application = apptest::application();
    // A German table next to the built-in sounds, as an installed copy has it.
    const std::string resources = elsewhere.file("share/quillo/sounds");
    std::filesystem::create_directories(resources);
    std::filesystem::create_directories(elsewhere.file("share/quillo/translations"));
    std::ofstream(elsewhere.file("quillo_de.ts"))
        << "<?xml version=\"1.0\" encoding=\"utf-8\"?><!DOCTYPE TS><TS version=\"2.1\" language=\"de\">"
           "<context><name>Quillo</name><message><source>Imported</source><translation>Importiert</translation>"
           "</message></context></TS>";
    const std::string command = std::string(lrelease) + " -silent " + elsewhere.file("quillo_de.ts") + " -qm " +
                                elsewhere.file("share/quillo/translations/quillo_de.qm");
    ASSERT_EQ(std::system(command.c_str()), 0);
    Filer::setResourceDirectory(resources);
    QLocale::setDefault(QLocale("de_DE"));
    auto app = launch();
    QLocale::setDefault(QLocale::c());
    Filer::setResourceDirectory("");
    writeBeat(elsewhere.file("Beat.wav"));
    Sound* s = app->handleOpenURL(elsewhere.file("Beat.wav"));
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->inFolder()->name(), "Importiert");
    // The window's hand-over answer names the sound, or says why not.
    writeBeat(elsewhere.file("Beat.wav"));
    EXPECT_EQ(app->importHandedOverFile(elsewhere.file("Beat.wav")), "ok\tBeat 2");
    EXPECT_EQ(app->importHandedOverFile(elsewhere.file("gone.wav")).rfind("error\tcannot read", 0), 0u);
    for (QTranslator* t : application.findChildren<QTranslator*>()) {
        QCoreApplication::removeTranslator(t);
        delete t;
    }
}
