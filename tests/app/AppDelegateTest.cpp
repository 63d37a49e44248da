// Launching the application on a library, and files handed over by other programs.
#include <QSettings>
#include <filesystem>
#include <fstream>

#include "app/AppDelegate.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
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
