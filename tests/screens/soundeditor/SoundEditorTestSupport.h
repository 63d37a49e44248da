#pragma once
// The sound editor's tests: the application on a real library in a temporary
// folder, its engine on the offline driver (or the null device), and WAV files
// written and read back.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTemporaryDir>
#include <filesystem>
#include <memory>

#include "app/AppDelegate.h"
#include "engine/MainThread.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "screens/soundeditor/SoundView.h"
#include "tests/library/TestStore.h"
#include "tests/recording/RecordingTestSupport.h"
#include "tests/screens/OffscreenApplication.h"

namespace soundeditortest {


inline bool fileExists(const std::string& path) { return std::filesystem::exists(path); }

class SoundEditorTest : public ::testing::Test {
protected:
    void SetUp() override { start(AudioDriverKind::Offline); }
    void TearDown() override {
        SoundView::waitForInputSwitch();
        app.reset();
    }
    void start(AudioDriverKind driver) {
        if (app) {
            SoundView::waitForInputSwitch();
            app.reset();
        }
        app = std::make_unique<AppDelegate>(AppDelegateOptions{docs.path(), docs.file("settings.ini"), driver, &main});
        app->addAudioControlla();
        app->managedObjectContext();
        Filer::setResourceDirectory(res.path());
        Filer::setTemporaryDirectory(temp.path());
    }
    AudioController* engine() { return app->audioController(); }
    CoreDater& dater() { return CoreDater::shIns(); }
    std::string scratch() const { return temp.file(Filer::kTempRecordingName); }

    // A user sound with its WAV (and photo when asked) in the library folder.
    Sound* userSound(const std::string& name, int16_t color, bool withPhoto = false) {
        writeStereoWav(Filer::pathForWavSound(name), std::vector<int16_t>(441, 100), std::vector<int16_t>(441, 100));
        if (withPhoto) writeText(Filer::pathToDocument(Filer::jpgf(name)), "photo of " + name);
        return dater().createRecordedSound(name, color, "Mine");
    }
    static void writeText(const std::string& path, const std::string& text) {
        FILE* f = std::fopen(path.c_str(), "wb");
        ASSERT_NE(f, nullptr) << path;
        std::fputs(text.c_str(), f);
        std::fclose(f);
    }
    static std::string readText(const std::string& path) {
        std::string text;
        if (FILE* f = std::fopen(path.c_str(), "rb")) {
            char buffer[256];
            size_t n;
            while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, n);
            std::fclose(f);
        }
        return text;
    }
    size_t soundCount() { return dater().getAllItemsOfEntity("Sound").size(); }

    TempDir docs, res, temp;
    RunLoopMainThread main;
    std::unique_ptr<AppDelegate> app;
};

}  // namespace soundeditortest
