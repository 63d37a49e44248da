// The settings screen's audio choices: saved, checked, and taken by the
// running engine at once.
#include <QSettings>

#include "export/SettingsVC.h"
#include "tests/export/ExportTestSupport.h"

namespace {

TEST_F(ExportTest, SavedAudioChoicesReachTheRunningEngineAndTheNextLaunch) {
    // The device list is not what is checked here: no sound card is probed.
    struct NoProbing {
        NoProbing() { qputenv("QUILLO_AUDIO", "offline"); }
        ~NoProbing() { qunsetenv("QUILLO_AUDIO"); }
    } noProbing;
    AudioController* engine = app->audioController();
    SettingsVC settings;
    EXPECT_EQ(settings.outputDevice, "Default");
    EXPECT_EQ(settings.bufferFrames, 256);

    settings.bufferFrames = 5000;  // more than one render slice
    EXPECT_FALSE(settings.save());
    EXPECT_FALSE(settings.problem().isEmpty());
    EXPECT_EQ(engine->devices(), AudioDeviceChoice{});

    settings.bufferFrames = 512;
    settings.outputDevice = "USB Speakers";
    ASSERT_TRUE(settings.save());
    EXPECT_EQ(engine->devices(), (AudioDeviceChoice{"USB Speakers", "", 512}));
    EXPECT_EQ(app->settings()->value("audio/inputDevice").toString(), "Default");

    // The next launch opens what was chosen; the screen shows it again.
    app->addAudioControlla();
    EXPECT_EQ(app->audioController()->devices(), (AudioDeviceChoice{"USB Speakers", "", 512}));
    SettingsVC again;
    EXPECT_EQ(again.outputDevice, "USB Speakers");
    EXPECT_EQ(again.bufferFrames, 512);
    EXPECT_TRUE(again.outputDevices().contains("USB Speakers")) << "a device that is not plugged in stays choosable";
}

}  // namespace
