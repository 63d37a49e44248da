// Importing a handed-over file either completes (a real WAV in the library, a
// saved sound, the source removed) or changes nothing and says why.
#include <sys/stat.h>

#include <QDir>
#include <QUrl>
#include <filesystem>
#include <fstream>

#include "app/AppDelegate.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/store/LibraryStore.h"
#include "tests/app/AppTestSupport.h"

namespace fs = std::filesystem;
using namespace apptest;

class SafeImportTest : public ::testing::Test {
protected:
    void TearDown() override {
        app.reset();
        Filer::setDocumentsDirectory("");
    }
    void launch(const std::string& folder) {
        app.reset();
        AppDelegateOptions options;
        options.libraryFolder = folder;
        options.settingsFile = elsewhere.file("settings.ini");
        options.driver = AudioDriverKind::Offline;
        options.mainThread = &mainThread;
        app = std::make_unique<AppDelegate>(options);
        ASSERT_TRUE(app->didFinishLaunching()) << app->libraryError().message;
    }
    Sound* sound(const std::string& name) { return CoreDater::shIns().findSoundWithName(name); }
    size_t soundCount() { return CoreDater::shIns().getAllItemsOfEntity("Sound").size(); }
    // The imported file is a 16-bit WAV in the engine's format holding the source's frames.
    void expectEngineWav(const std::string& path, int frames) {
        SoundFile s = readSound(path);
        ASSERT_TRUE(s.ok) << path;
        EXPECT_EQ(s.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
        EXPECT_EQ(s.rate, 44100);
        EXPECT_EQ(s.channels, 2);
        EXPECT_EQ(s.frames(), frames);
    }

    TempDir library, elsewhere;
    RunLoopMainThread mainThread;
    std::unique_ptr<AppDelegate> app;
};

TEST_F(SafeImportTest, FilesInsideTheLibraryAreCopiedNeverDeleted) {
    launch(library.path());
    // A sound's own file handed back: a second sound, and Mine keeps its file.
    writeSound(elsewhere.file("Mine.wav"), 4410);
    ASSERT_NE(app->handleOpenURL(elsewhere.file("Mine.wav")), nullptr);
    const std::string mine = Filer::pathForWavSound("Mine");
    const std::string before = readBytes(mine);
    Sound* copy = app->handleOpenURL(mine);
    ASSERT_NE(copy, nullptr) << app->lastImport().error;
    EXPECT_EQ(copy->name(), "Mine 2");
    EXPECT_EQ(readBytes(mine), before);

    // A leftover file with no sound (a killed import, a stray copy) is never
    // bound to a new sound, and never replaced.
    std::ofstream(Filer::pathForWavSound("Beat"), std::ios::binary) << "leftover";
    writeSound(elsewhere.file("Beat.wav"), 2000);
    Sound* beat = app->handleOpenURL(elsewhere.file("Beat.wav"));
    ASSERT_NE(beat, nullptr) << app->lastImport().error;
    EXPECT_EQ(beat->name(), "Beat 2");
    EXPECT_EQ(readBytes(Filer::pathForWavSound("Beat")), "leftover");
    expectEngineWav(Filer::pathForWavSound("Beat 2"), 2000);
    EXPECT_FALSE(fs::exists(elsewhere.file("Beat.wav")));
}

TEST_F(SafeImportTest, AnyFormatBecomesARealWavAndOnlyWholeSoundsAreTaken) {
    launch(library.path());
    // FLAC, AIFF and a mono 22 kHz WAV: decoded and written as engine-format WAVs.
    writeSound(elsewhere.file("flac take.flac"), 4410, 44100, 1, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    writeSound(elsewhere.file("aiff.aiff"), 4410, 44100, 2, SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    writeSound(elsewhere.file("low.wav"), 2205, 22050, 1);
    for (auto [file, name, frames] : {std::tuple{"flac take.flac", "flac take", 4410}, {"aiff.aiff", "aiff", 4410},
                                      {"low.wav", "low", 4410}}) {
        ASSERT_NE(app->handleOpenURL(elsewhere.file(file)), nullptr) << app->lastImport().error;
        SoundFile s = readSound(Filer::pathForWavSound(name));
        expectEngineWav(Filer::pathForWavSound(name), frames);
        if (std::string(name) != "low") {
            for (int k : {0, 1, 777, 4409}) EXPECT_EQ(s.samples[size_t(k) * 2], sampleAt(k, 0)) << name << k;
        }
    }

    // Refused, with nothing written and the source kept: data cut short,
    // absurd rates, text, a pipe, a missing file.
    writeSound(elsewhere.file("whole.wav"), 44100);
    const std::string whole = readBytes(elsewhere.file("whole.wav"));
    std::ofstream(elsewhere.file("cut.wav"), std::ios::binary) << whole.substr(0, whole.size() / 2);
    writeSound(elsewhere.file("slow.wav"), 100, 1);
    std::ofstream(elsewhere.file("notes.wav")) << "not a sound";
    ASSERT_EQ(::mkfifo(elsewhere.file("pipe.wav").c_str(), 0600), 0);
    const size_t sounds = soundCount();
    for (const char* bad : {"cut.wav", "slow.wav", "notes.wav", "pipe.wav", "missing.wav"}) {
        EXPECT_EQ(app->handleOpenURL(elsewhere.file(bad)), nullptr) << bad;
        EXPECT_FALSE(app->lastImport().error.empty()) << bad;
        EXPECT_EQ(fs::exists(elsewhere.file(bad)), std::string(bad) != "missing.wav") << bad;
    }
    EXPECT_NE(app->lastImport().error.find("No such file"), std::string::npos) << app->lastImport().error;
    EXPECT_EQ(soundCount(), sounds);
    for (const auto& entry : fs::directory_iterator(library.path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(name.find("cut") == std::string::npos && name.find("slow") == std::string::npos &&
                    name.rfind(".quillo-import", 0) != 0)
            << name;
    }
}

TEST_F(SafeImportTest, PathsOfEveryKindAndNamesThatMustFit) {
    launch(library.path());
    // A relative path, and a file URL with characters that need escaping.
    fs::create_directories(elsewhere.file("music"));
    writeSound(elsewhere.file("music/beat.wav"), 1000);
    const fs::path cwd = fs::current_path();
    fs::current_path(elsewhere.file("music"));
    Sound* relative = app->handleOpenURL("beat.wav");
    fs::current_path(cwd);
    ASSERT_NE(relative, nullptr) << app->lastImport().error;
    const std::string odd = elsewhere.file("50% #1 [take]?.wav");
    writeSound(odd, 1000);
    const std::string url = QUrl::fromLocalFile(QString::fromStdString(odd)).toString(QUrl::FullyEncoded).toStdString();
    Sound* fromUrl = app->handleOpenURL(url);
    ASSERT_NE(fromUrl, nullptr) << app->lastImport().error;
    EXPECT_EQ(fromUrl->name(), "50% #1 [take]?");
    EXPECT_FALSE(fs::exists(odd));

    // Control characters go, blank names become the default name.
    writeSound(elsewhere.file("two\nlines\t.wav"), 1000);
    writeSound(elsewhere.file("\u2003\u00a0 .wav"), 1000);
    EXPECT_EQ(app->handleOpenURL(elsewhere.file("two\nlines\t.wav"))->name(), "twolines");
    EXPECT_EQ(app->handleOpenURL(elsewhere.file("\u2003\u00a0 .wav"))->name(), "Sound");

    // A 251-byte stem taken twice: the numbered name still fits the file system.
    const std::string stem(251, 'x');
    for (int round = 0; round < 2; ++round) {
        writeSound(elsewhere.file(stem + ".wav"), 1000);
        Sound* s = app->handleOpenURL(elsewhere.file(stem + ".wav"));
        ASSERT_NE(s, nullptr) << app->lastImport().error;
        EXPECT_LE(Filer::wavf(s->name()).size(), 255u);
        expectEngineWav(Filer::pathForWavSound(s->name()), 1000);
    }
}

TEST_F(SafeImportTest, AFailedSaveLeavesNoFileNoSoundAndTheSource) {
    launch(library.path());
    // The store file may not grow any more, and pending changes already need
    // more room than it has: every save now meets a full disk.
    app->managedObjectContext()->limitPagesForTesting(1);
    CoreDater::shIns().beginBatch();
    for (int i = 0; i < 300; ++i) CoreDater::shIns().createRecordedSound("filler " + std::to_string(i), 3, "Full");
    ASSERT_FALSE(CoreDater::shIns().endBatch());
    writeSound(elsewhere.file("Beat.wav"), 1000);
    EXPECT_EQ(app->handleOpenURL(elsewhere.file("Beat.wav")), nullptr);
    EXPECT_NE(app->lastImport().error.find("could not be saved"), std::string::npos) << app->lastImport().error;
    EXPECT_TRUE(fs::exists(elsewhere.file("Beat.wav")));
    EXPECT_FALSE(fs::exists(Filer::pathForWavSound("Beat")));
    EXPECT_EQ(sound("Beat"), nullptr);
    EXPECT_EQ(CoreDater::shIns().findEntity("SoundFolder", "Imported"), nullptr);
    launch(library.path());
    EXPECT_EQ(sound("Beat"), nullptr);
}

TEST_F(SafeImportTest, AFullDiskFailsImportsCleanlyAndKeepsEveryReportedOne) {
    const std::string folder = elsewhere.file("small");
    TestMount disk = TestMount::tmpfs(folder, "2m");
    if (!disk.ok()) GTEST_SKIP() << "cannot mount a tmpfs here (needs root): " << std::strerror(errno);
    launch(folder);
    std::vector<std::string> imported;
    int refused = 0;
    for (int n = 0; n < 30 && refused < 3; ++n) {
        const std::string source = elsewhere.file("take " + std::to_string(n) + ".wav");
        writeSound(source, 22050);  // 88 KB each in the library
        Sound* s = app->handleOpenURL(source);
        if (s) {
            imported.push_back(s->name());
            EXPECT_FALSE(fs::exists(source));
        } else {
            ++refused;
            EXPECT_NE(app->lastImport().error.find("No space left"), std::string::npos) << app->lastImport().error;
            EXPECT_TRUE(fs::exists(source));
        }
    }
    ASSERT_GT(refused, 0) << "the disk never filled up";
    ASSERT_FALSE(imported.empty());
    launch(folder);
    EXPECT_EQ(soundCount(), 88u + imported.size());
    for (const std::string& name : imported) {
        ASSERT_NE(sound(name), nullptr) << name;
        expectEngineWav(Filer::pathForWavSound(name), 22050);
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
        EXPECT_NE(entry.path().filename().string().rfind(".quillo-import", 0), 0u) << entry.path();
    }
}
