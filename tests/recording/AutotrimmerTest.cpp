// Trimming the scratch recording on disk: what is kept, the channel count,
// very short recordings and files that cannot be used.
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
    void trim(std::unique_ptr<Autotrimmer> trimmer, bool trimEnd = true) {
        trimmer->autoTrimBeginAndEnd(trimEnd);
        trimmer->releaseAutotrimmr();
    }
    TempDir temp;
    bool stereo = true;
};

TEST_F(AutotrimmerTest, KeepsTheSoundInPlaceWithTheChannelsOfTheSettingAtTrimTime) {
    std::vector<int16_t> left(40000, 0), right(40000);
    for (size_t k = 0; k < right.size(); ++k) right[k] = int16_t(k % 20000 - 10000);  // not scanned
    left[2000] = 1500;
    left[30000] = -1500;
    writeStereoWav(scratch(), left, right);
    trim(Autotrimmer::initDefault());
    const WavContents w = readWav(scratch());
    ASSERT_EQ(w.channels, 2);
    ASSERT_EQ(w.frames, 30100 - 1990);
    for (int64_t k = 0; k < w.frames; ++k) {
        ASSERT_EQ(w.at(k, 0), left[size_t(1990 + k)]) << k;
        ASSERT_EQ(w.at(k, 1), right[size_t(1990 + k)]) << k;
    }
    // Trimmed again with the setting off: mono (the average of both sides).
    stereo = false;
    trim(Autotrimmer::initForExport(), false);
    const WavContents mono = readWav(scratch());
    ASSERT_EQ(mono.channels, 1);
    ASSERT_EQ(mono.frames, w.frames - 10);  // from the first non-zero left sample to the end
    for (int64_t k = 0; k < mono.frames; ++k)
        ASSERT_EQ(mono.at(k, 0), (w.at(k + 10, 0) + w.at(k + 10, 1)) / 2) << k;
}

TEST_F(AutotrimmerTest, EmptySilentAndRightOnlyRecordingsKeepTheirLength) {
    for (auto [left, right] : {std::pair{0, 0}, {1000, 0}, {0, 20000}}) {
        const size_t n = left || right ? 5000 : 0;
        writeStereoWav(scratch(), std::vector<int16_t>(n, int16_t(left)), std::vector<int16_t>(n, int16_t(right)));
        trim(Autotrimmer::initDefault());
        EXPECT_EQ(readWav(scratch()).frames, int64_t(n)) << left << " " << right;
    }
}

TEST_F(AutotrimmerTest, RecordingShorterThanTheEndOffsetEndsInSilence) {
    // Kept from frame 10 to 130; the 80 frames past the end of the 50 are silence, never read.
    std::vector<int16_t> left(50, 7), right(50, -7);
    left[20] = left[30] = 2000;
    writeStereoWav(scratch(), left, right);
    trim(Autotrimmer::initDefault());
    const WavContents w = readWav(scratch());
    ASSERT_EQ(w.frames, 120);
    for (int64_t k = 0; k < 120; ++k) {
        ASSERT_EQ(w.at(k, 0), k < 40 ? left[size_t(10 + k)] : 0) << k;
        ASSERT_EQ(w.at(k, 1), k < 40 ? right[size_t(10 + k)] : 0) << k;
    }
}

TEST_F(AutotrimmerTest, FilesThatCannotBeReadOrWrittenAreLeftAlone) {
    LogCapture log;
    const std::string junk = "RIFF but not really a wave file";
    { std::ofstream(scratch(), std::ios::binary) << junk; }
    trim(Autotrimmer::initDefault());
    std::ifstream in(scratch(), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), junk);
    EXPECT_TRUE(log.contains("load error: "));

    std::filesystem::remove(scratch());
    trim(Autotrimmer::initDefault());
    EXPECT_FALSE(std::filesystem::exists(scratch()));

    // A temporary folder under a plain file: the writer cannot open, that is
    // logged, and the rest still runs.
    { std::ofstream(temp.file("plain")) << "x"; }
    Filer::setTemporaryDirectory(temp.file("plain") + "/tmp");
    auto trimmer = Autotrimmer::initDefault();
    trimmer->rewriteTrimmedFile();
    trimmer->releaseAutotrimmr();
    EXPECT_TRUE(log.contains("ERROR: "));
}

}  // namespace
