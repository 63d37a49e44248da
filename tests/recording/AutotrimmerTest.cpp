// Trimming the scratch recording on disk: what is kept, the channel count,
// very short and unusable recordings.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "library/media/Filer.h"
#include "recording/Autotrimmer.h"
#include "recording/Recorder.h"
#include "tests/library/TestStore.h"
#include "tests/recording/RecordingTestSupport.h"

namespace {

class AutotrimmerTest : public ::testing::Test {
protected:
    void SetUp() override {
        Filer::setTemporaryDirectory(temp.path());
        Autotrimmer::setRecordToStereoSource([this] { return stereo; });
    }
    void TearDown() override { Autotrimmer::setRecordToStereoSource(nullptr); }

    std::string scratch() const { return temp.file(Recorder::kScratchFileName); }
    void trim(std::unique_ptr<Autotrimmer> trimmer, bool trimEnd) {
        trimmer->autoTrimBeginAndEnd(trimEnd);
        trimmer->releaseAutotrimmr();
    }
    std::string bytesOf(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    TempDir temp;
    bool stereo = true;
};

TEST_F(AutotrimmerTest, KeepsTheSoundInPlaceWithTheChannelsOfTheSettingAtTrimTime) {
    std::vector<int16_t> left(40000, 0), right(40000);
    for (size_t k = 0; k < right.size(); ++k) right[k] = int16_t(k % 20000 - 10000);  // ignored by the scan
    left[2000] = 1500;
    left[30000] = -1500;
    left[35000] = -32768;  // silence
    writeStereoWav(scratch(), left, right);

    trim(Autotrimmer::initDefault(), true);
    WavContents w = readWav(scratch());
    ASSERT_EQ(w.channels, 2);
    ASSERT_EQ(w.frames, 30100 - 1990);
    for (int64_t k = 0; k < w.frames; ++k) {
        ASSERT_EQ(w.at(k, 0), left[size_t(1990 + k)]) << k;
        ASSERT_EQ(w.at(k, 1), right[size_t(1990 + k)]) << k;
    }

    // The stereo file trimmed again with the setting off becomes mono (the
    // average of both sides); without trimEnd the end stays.
    stereo = false;
    trim(Autotrimmer::initForExport(), false);
    const WavContents mono = readWav(scratch());
    ASSERT_EQ(mono.channels, 1);
    ASSERT_EQ(mono.frames, w.frames - 10);  // from the first non-zero left sample
    for (int64_t k = 0; k < mono.frames; ++k)
        ASSERT_EQ(mono.at(k, 0), int16_t((int32_t(w.at(k + 10, 0)) + w.at(k + 10, 1)) / 2)) << k;
}

TEST_F(AutotrimmerTest, EmptySilentAndRightOnlyRecordingsKeepTheirLength) {
    writeStereoWav(scratch(), {}, {});
    trim(Autotrimmer::initDefault(), true);
    EXPECT_EQ(readWav(scratch()).frames, 0);

    writeStereoWav(scratch(), std::vector<int16_t>(5000, 1000), std::vector<int16_t>(5000, 0));
    trim(Autotrimmer::initDefault(), true);
    EXPECT_EQ(readWav(scratch()).frames, 5000);

    writeStereoWav(scratch(), std::vector<int16_t>(5000, 0), std::vector<int16_t>(5000, 20000));
    trim(Autotrimmer::initDefault(), true);
    EXPECT_EQ(readWav(scratch()).frames, 5000);
}

TEST_F(AutotrimmerTest, RecordingShorterThanTheEndOffsetEndsInSilence) {
    // 50 frames with sound at 20 and 30: kept from frame 10 to 130, and the
    // 80 frames past the recording's end are silence, never read.
    std::vector<int16_t> left(50, 7), right(50, -7);
    left[20] = 2000;
    left[30] = 2000;
    writeStereoWav(scratch(), left, right);
    trim(Autotrimmer::initDefault(), true);
    const WavContents w = readWav(scratch());
    ASSERT_EQ(w.frames, 120);
    for (int64_t k = 0; k < 120; ++k) {
        ASSERT_EQ(w.at(k, 0), k < 40 ? left[size_t(10 + k)] : 0) << k;
        ASSERT_EQ(w.at(k, 1), k < 40 ? right[size_t(10 + k)] : 0) << k;
    }
}

TEST_F(AutotrimmerTest, FilesThatCannotBeReadOrWrittenAreLeftAlone) {
    LogCapture log;
    // Not a sound: logged by the loader, the file untouched.
    { std::ofstream(scratch(), std::ios::binary) << "RIFF but not really a wave file"; }
    const std::string before = bytesOf(scratch());
    trim(Autotrimmer::initDefault(), true);
    EXPECT_EQ(bytesOf(scratch()), before);
    EXPECT_TRUE(log.contains("load error: "));

    // No recording at all: nothing is created.
    std::filesystem::remove(scratch());
    trim(Autotrimmer::initDefault(), true);
    EXPECT_FALSE(std::filesystem::exists(scratch()));

    // A temporary folder that cannot exist (under a plain file): the writer
    // cannot open, which is logged, and the rest still runs.
    { std::ofstream(temp.file("plain")) << "x"; }
    Filer::setTemporaryDirectory(temp.file("plain") + "/tmp");
    auto trimmer = Autotrimmer::initDefault();
    trimmer->rewriteTrimmedFile();
    trimmer->releaseAutotrimmr();
    EXPECT_TRUE(log.contains("ERROR: "));
}

}  // namespace
