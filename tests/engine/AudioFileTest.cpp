// Loading, writing and playing real files in a temporary folder.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "engine/AudioFilePlayer.h"
#include "engine/AudioFileWriter.h"
#include "tests/engine/EngineTestSupport.h"

namespace fs = std::filesystem;

namespace {

const AudioStreamDescription kEngine = AudioController::nonInterleaved16BitStereoAudioDescription();

class AudioFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("quillo-engine-test-" + std::to_string(getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    // Writes interleaved 16-bit samples with libsndfile itself.
    std::string writeWithSndfile(const std::string& name, int format, int rate, int channels,
                                 const std::vector<int16_t>& interleaved) {
        SF_INFO info{};
        info.samplerate = rate;
        info.channels = channels;
        info.format = format;
        SNDFILE* f = sf_open(path(name).c_str(), SFM_WRITE, &info);
        EXPECT_NE(f, nullptr) << sf_strerror(nullptr);
        sf_writef_short(f, interleaved.data(), sf_count_t(interleaved.size() / size_t(channels)));
        sf_close(f);
        return path(name);
    }

    std::vector<int16_t> readWithSndfile(const std::string& file, SF_INFO* info) {
        *info = SF_INFO{};
        SNDFILE* f = sf_open(file.c_str(), SFM_READ, info);
        EXPECT_NE(f, nullptr);
        if (!f) return {};
        std::vector<int16_t> s(size_t(info->frames * info->channels));
        sf_readf_short(f, s.data(), info->frames);
        sf_close(f);
        return s;
    }

    fs::path dir_;
};

int16_t sampleAt(size_t i, int side) { return int16_t(int32_t((i * 7919 + size_t(side) * 4099) % 65536) - 32768); }

std::vector<int16_t> stereoSamples(size_t frames) {
    std::vector<int16_t> s(frames * 2);
    for (size_t i = 0; i < frames; ++i) {
        s[2 * i] = sampleAt(i, 0);
        s[2 * i + 1] = sampleAt(i, 1);
    }
    return s;
}

void expectLoadError(const std::string& file, const std::string& message) {
    AudioFileLoaderOperation op(file, kEngine);
    bool completed = false;
    op.completedBlock = [&] { completed = true; };
    op.start();
    ASSERT_TRUE(op.error().has_value()) << file;
    EXPECT_EQ(op.error()->localizedDescription, message);
    EXPECT_EQ(op.error()->domain, kAudioErrorOSStatusDomain);
    EXPECT_EQ(op.bufferList(), nullptr);
    EXPECT_TRUE(completed);
}

TEST_F(AudioFileTest, MonoFileFeedsBothChannels) {
    std::vector<int16_t> mono(3000);
    for (size_t i = 0; i < mono.size(); ++i) mono[i] = sampleAt(i, 0);
    const std::string file = writeWithSndfile("mono.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, mono);
    AudioFileLoaderOperation op(file, kEngine);
    op.start();
    ASSERT_FALSE(op.error().has_value());
    ASSERT_NE(op.bufferList(), nullptr);
    EXPECT_EQ(op.lengthInFrames(), 3000u);
    AudioBufferList* list = op.bufferList();
    ASSERT_EQ(list->mNumberBuffers, 2u);
    for (int b = 0; b < 2; ++b) {
        EXPECT_EQ(list->mBuffers[b].mDataByteSize, 6000u);
        EXPECT_EQ(list->mBuffers[b].mNumberChannels, 1u);
        const auto* s = static_cast<const int16_t*>(list->mBuffers[b].mData);
        for (size_t i = 0; i < mono.size(); ++i) ASSERT_EQ(s[i], mono[i]) << "buffer " << b << " frame " << i;
    }
    // The caller owns the buffers and frees them as the application does.
    free(list->mBuffers[0].mData);
    free(list->mBuffers[1].mData);
    free(list);
}

TEST_F(AudioFileTest, HalfRateFileLoadsAtTwiceItsLength) {
    std::vector<int16_t> stereo(1001 * 2);
    for (size_t i = 0; i < 1001; ++i) stereo[2 * i] = stereo[2 * i + 1] = int16_t(10000 * std::sin(i * 0.05));
    const std::string file = writeWithSndfile("half.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 22050, 2, stereo);
    AudioFileLoaderOperation op(file, kEngine);
    op.start();
    ASSERT_FALSE(op.error().has_value());
    EXPECT_EQ(op.lengthInFrames(), 2002u);
    EXPECT_EQ(op.bufferList()->mBuffers[0].mDataByteSize, 4004u);
    // The sine is still there at twice the length: frame 2i is near sample i.
    const auto* l = static_cast<const int16_t*>(op.bufferList()->mBuffers[0].mData);
    for (size_t i = 100; i < 900; i += 50) EXPECT_NEAR(l[2 * i], stereo[2 * i], 400) << i;
    freeBufferList(op.bufferList());

    // 48 kHz to 44.1 kHz: ceil(44100 / 48000 x 1000) = 919.
    const std::string other = writeWithSndfile("48k.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 2, stereoSamples(1000));
    AudioFileLoaderOperation op48(other, kEngine);
    op48.start();
    EXPECT_EQ(op48.lengthInFrames(), 919u);
    freeBufferList(op48.bufferList());
}

TEST_F(AudioFileTest, RateConversionIsCleanAndStreamsAndCancelsLikeAWholeLoad) {
    // 2 s of a 1 kHz sine in a mono 48 kHz file: at 44.1 kHz every frame is
    // where the sine says, within a couple of steps of 16 bits, on both sides.
    const size_t fileFrames = 96000;
    std::vector<int16_t> mono(fileFrames);
    const double w = 2.0 * M_PI * 1000.0;
    for (size_t i = 0; i < fileFrames; ++i) mono[i] = int16_t(std::lrint(20000.0 * std::sin(w * double(i) / 48000.0)));
    const std::string file = writeWithSndfile("sine48k.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 1, mono);
    AudioFileLoaderOperation whole(file, kEngine);
    whole.start();
    ASSERT_FALSE(whole.error().has_value());
    ASSERT_EQ(whole.lengthInFrames(), 88200u);
    const auto* l = static_cast<const int16_t*>(whole.bufferList()->mBuffers[0].mData);
    const auto* r = static_cast<const int16_t*>(whole.bufferList()->mBuffers[1].mData);
    double worst = 0;
    for (size_t k = 2000; k < 86000; ++k) {  // away from the edges, where the filter starts and stops
        worst = std::max(worst, std::abs(double(l[k]) - 20000.0 * std::sin(w * double(k) / 44100.0)));
        ASSERT_EQ(l[k], r[k]) << k;
    }
    EXPECT_LT(worst, 3.0);

    // Streamed: the same frames, in 4096-frame pieces.
    std::vector<int16_t> streamed;
    std::vector<uint32_t> pieces;
    AudioFileLoaderOperation stream(file, kEngine);
    stream.audioReceiverBlock = [&](const AudioBufferList* audio, uint32_t frames) {
        pieces.push_back(frames);
        const auto* p = static_cast<const int16_t*>(audio->mBuffers[0].mData);
        streamed.insert(streamed.end(), p, p + frames);
    };
    stream.start();
    EXPECT_EQ(stream.bufferList(), nullptr);
    ASSERT_EQ(streamed.size(), 88200u);
    EXPECT_TRUE(std::equal(streamed.begin(), streamed.end(), l));
    EXPECT_EQ(pieces.front(), 4096u);
    EXPECT_EQ(pieces.size(), size_t((88200 + 4095) / 4096));
    freeBufferList(whole.bufferList());

    // Cancelled in the middle of converting: nothing published.
    AudioFileLoaderOperation cancelled(file, kEngine);
    int calls = 0;
    cancelled.audioReceiverBlock = [&](const AudioBufferList*, uint32_t) {
        if (++calls == 3) cancelled.cancel();
    };
    cancelled.start();
    EXPECT_EQ(calls, 3);
    EXPECT_FALSE(cancelled.error().has_value());
}

TEST_F(AudioFileTest, BadFilesGiveTheirErrorAndNoBuffers) {
    LogCapture log;
    expectLoadError(path("missing.wav"), "Couldn't open the audio file");

    std::ofstream(path("empty.wav")).close();
    expectLoadError(path("empty.wav"), "Couldn't open the audio file");

    std::ofstream(path("notes.wav")) << "These are not the sounds you are looking for.\n";
    expectLoadError(path("notes.wav"), "Couldn't open the audio file");

    const std::string full = writeWithSndfile("full.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, stereoSamples(5000));
    std::ifstream in(full, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::ofstream(path("cut-header.wav"), std::ios::binary).write(bytes.data(), 30);
    expectLoadError(path("cut-header.wav"), "Couldn't open the audio file");
    std::ofstream(path("cut-data.wav"), std::ios::binary).write(bytes.data(), 10000);
    expectLoadError(path("cut-data.wav"), "Couldn't read the audio file (error -39/\x3f\x3f\x3f\x3f)");

    // A target the converter cannot make.
    AudioStreamDescription big = kEngine;
    big.mBitsPerChannel = 24;
    big.mBytesPerFrame = big.mBytesPerPacket = 3;
    AudioFileLoaderOperation op(full, big);
    op.start();
    ASSERT_TRUE(op.error().has_value());
    EXPECT_EQ(op.error()->localizedDescription, "Couldn't convert the audio file (error 1718449215/fmt?)");
    EXPECT_EQ(op.bufferList(), nullptr);

    // Every failing call is logged with its status three ways.
    EXPECT_GE(log.countContaining(": sf_open result "), 4);
}

TEST_F(AudioFileTest, StreamsToTheReceiverBlockInPiecesAndCancels) {
    const auto samples = stereoSamples(10000);
    const std::string file = writeWithSndfile("long.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, samples);
    std::vector<uint32_t> pieces;
    size_t frame = 0;
    bool allMatch = true;
    AudioFileLoaderOperation op(file, kEngine);
    op.audioReceiverBlock = [&](const AudioBufferList* audio, uint32_t frames) {
        pieces.push_back(frames);
        const auto* l = static_cast<const int16_t*>(audio->mBuffers[0].mData);
        const auto* r = static_cast<const int16_t*>(audio->mBuffers[1].mData);
        for (uint32_t k = 0; k < frames; ++k, ++frame)
            allMatch &= l[k] == samples[2 * frame] && r[k] == samples[2 * frame + 1];
    };
    op.start();
    EXPECT_EQ(pieces, (std::vector<uint32_t>{4096, 4096, 1808}));
    EXPECT_TRUE(allMatch);
    EXPECT_EQ(op.bufferList(), nullptr);

    // Cancelled after the first piece: nothing published, completion still told.
    AudioFileLoaderOperation cancelled(file, kEngine);
    int calls = 0;
    bool completed = false;
    cancelled.audioReceiverBlock = [&](const AudioBufferList*, uint32_t) {
        ++calls;
        cancelled.cancel();
    };
    cancelled.completedBlock = [&] { completed = true; };
    cancelled.start();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(completed);
    EXPECT_EQ(cancelled.bufferList(), nullptr);
    EXPECT_FALSE(cancelled.error().has_value());

    AudioFileLoaderOperation early(file, kEngine);
    early.cancel();
    early.start();
    EXPECT_EQ(early.bufferList(), nullptr);

    AudioStreamDescription info{};
    uint64_t length = 0;
    AudioError error;
    ASSERT_TRUE(AudioFileLoaderOperation::infoForFileAtURL(file, &info, &length, &error));
    EXPECT_EQ(length, 10000u);
    EXPECT_EQ(info.mSampleRate, 44100.0);
    EXPECT_EQ(info.mChannelsPerFrame, 2u);
    EXPECT_EQ(info.mBitsPerChannel, 16u);
    EXPECT_FALSE(AudioFileLoaderOperation::infoForFileAtURL(path("missing.wav"), &info, &length, &error));
    EXPECT_EQ(error.localizedDescription, "Couldn't open the audio file");
}

// Client buffers in the engine format holding `frames` of sampleAt().
struct ClientAudio {
    explicit ClientAudio(size_t frames, bool mono) : buffer(uint32_t(frames)) {
        for (size_t i = 0; i < frames; ++i) {
            buffer.left()[i] = sampleAt(i, 0);
            buffer.right()[i] = mono ? sampleAt(i, 0) : sampleAt(i, 1);
        }
    }
    AudioBufferList slice(size_t at, uint32_t frames) const {
        AudioBufferList l = *buffer.list;
        for (int b = 0; b < 2; ++b) {
            l.mBuffers[b].mData = static_cast<int16_t*>(l.mBuffers[b].mData) + at;
            l.mBuffers[b].mDataByteSize = frames * 2;
        }
        return l;
    }
    EngineBuffer buffer;
};

TEST_F(AudioFileTest, WriterRoundTripsAreSampleExact) {
    struct Case {
        uint32_t type;
        const char* name;
        uint32_t channels;
        int sfType;
    };
    const Case cases[] = {{kAudioFileWAVEType, "stereo.wav", 2, SF_FORMAT_WAV},
                          {kAudioFileWAVEType, "mono.wav", 1, SF_FORMAT_WAV},
                          {kAudioFileAIFFType, "stereo.aiff", 2, SF_FORMAT_AIFF},
                          {kAudioFileAIFFType, "mono.aiff", 1, SF_FORMAT_AIFF}};
    const size_t frames = 30000;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClientAudio audio(frames, c.channels == 1);
        AudioFileWriter writer(kEngine);
        AudioError error;
        ASSERT_TRUE(writer.beginWritingToFileAtPath(path(c.name), c.type, 16, c.channels, &error))
            << error.localizedDescription;
        EXPECT_EQ(writer.path(), path(c.name));
        // Asynchronously as the render thread does, then synchronously.
        size_t at = 0;
        for (; at + 256 <= 20000; at += 256) {
            AudioBufferList piece = audio.slice(at, 256);
            ASSERT_EQ(AudioFileWriterAddAudio(&writer, &piece, 256), 0);
        }
        AudioBufferList rest = audio.slice(at, uint32_t(frames - at));
        ASSERT_EQ(AudioFileWriterAddAudioSynchronously(&writer, &rest, uint32_t(frames - at)), 0);
        writer.finishWriting();
        EXPECT_FALSE(writer.writing());

        SF_INFO info;
        auto read = readWithSndfile(path(c.name), &info);
        EXPECT_EQ(info.format & SF_FORMAT_TYPEMASK, c.sfType);
        EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16);
        EXPECT_EQ(info.channels, int(c.channels));
        ASSERT_EQ(info.frames, sf_count_t(frames));
        for (size_t i = 0; i < frames; ++i) {
            ASSERT_EQ(read[i * c.channels], sampleAt(i, 0)) << i;
            if (c.channels == 2) {
                ASSERT_EQ(read[i * 2 + 1], sampleAt(i, 1)) << i;
            }
        }
        // And back through the loader into the engine format.
        AudioFileLoaderOperation op(path(c.name), kEngine);
        op.start();
        ASSERT_EQ(op.lengthInFrames(), frames);
        EXPECT_EQ(std::memcmp(op.bufferList()->mBuffers[0].mData, audio.buffer.left(), frames * 2), 0);
        EXPECT_EQ(std::memcmp(op.bufferList()->mBuffers[1].mData, audio.buffer.right(), frames * 2), 0);
        freeBufferList(op.bufferList());
    }
}

TEST_F(AudioFileTest, WriterStatesAndErrors) {
    AudioFileWriter writer(kEngine);
    writer.finishWriting();  // idle: nothing happens
    EngineBuffer some(256);
    EXPECT_EQ(AudioFileWriterAddAudio(&writer, some.list, 256), kAudioFileWriterNotWriting);
    EXPECT_EQ(AudioFileWriterAddAudioSynchronously(&writer, some.list, 256), kAudioFileWriterNotWriting);

    AudioError error;
    EXPECT_FALSE(writer.beginWritingToFileAtPath(path("no/such/folder/x.wav"), kAudioFileWAVEType, &error));
    EXPECT_EQ(error.localizedDescription.rfind("Couldn't open the output file (error ", 0), 0u)
        << error.localizedDescription;
    EXPECT_FALSE(writer.writing());

    if (!AudioFileWriter::AACEncodingAvailable()) {
        EXPECT_FALSE(writer.beginWritingToFileAtPath(path("x.m4a"), kAudioFileM4AType, &error));
        EXPECT_EQ(error.localizedDescription, "AAC Encoding not available");
        EXPECT_EQ(error.domain, kAudioFileWriterErrorDomain);
        EXPECT_EQ(error.code, 0);
    }

    // A burst bigger than the ring: the overflow is refused, never blocked on,
    // and every frame that was taken reaches the file.
    ASSERT_TRUE(writer.beginWritingToFileAtPath(path("burst.wav"), kAudioFileWAVEType, &error));
    ClientAudio audio(4096, false);
    uint64_t taken = 0;
    int refused = 0;
    for (int i = 0; i < 100; ++i) {  // 9.3 s of audio at once
        AudioBufferList piece = audio.slice(0, 4096);
        const int32_t status = AudioFileWriterAddAudio(&writer, &piece, 4096);
        if (status == 0) taken += 4096;
        else {
            EXPECT_EQ(status, kAudioFileWriterRingFull);
            ++refused;
        }
    }
    writer.finishWriting();
    EXPECT_GT(refused, 0);
    SF_INFO info;
    readWithSndfile(path("burst.wav"), &info);
    EXPECT_EQ(uint64_t(info.frames), taken);
}

TEST_F(AudioFileTest, AacFilesAreWrittenWhenAnEncoderExists) {
    if (!AudioFileWriter::AACEncodingAvailable()) GTEST_SKIP() << "no AAC encoder in this FFmpeg";
    AudioFileWriter writer(kEngine);
    AudioError error;
    ASSERT_TRUE(writer.beginWritingToFileAtPath(path("sound.m4a"), kAudioFileM4AType, &error))
        << error.localizedDescription;
    ClientAudio audio(44100, false);
    for (size_t at = 0; at + 441 <= 44100; at += 441) {
        AudioBufferList piece = audio.slice(at, 441);
        ASSERT_EQ(AudioFileWriterAddAudio(&writer, &piece, 441), 0);
    }
    writer.finishWriting();
    std::ifstream in(path("sound.m4a"), std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_GT(bytes.size(), 1000u);
    EXPECT_EQ(std::string(bytes.data() + 4, 4), "ftyp");
}

// Records the controller's output, as the recorder does, on the render thread.
class WritingReceiver : public AudioReceiver {
public:
    explicit WritingReceiver(AudioFileWriter* writer) : writer_(writer) {}
    void receiverCallback(AudioController*, const void*, const AudioTimeStamp&, uint32_t frames,
                          const AudioBufferList* audio) QUILLO_NONBLOCKING override {
        if (AudioFileWriterAddAudio(writer_, audio, frames) != 0) failures.fetch_add(1);
    }
    std::atomic<int> failures{0};

private:
    AudioFileWriter* writer_;
};

TEST_F(AudioFileTest, PlayerPlaysTheFileIntoARecordingOfTheOutput) {
    const auto samples = stereoSamples(1000);
    const std::string file = writeWithSndfile("clip.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, samples);
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));

    AudioFileWriter writer(kEngine);
    ASSERT_TRUE(writer.beginWritingToFileAtPath(path("out.wav"), kAudioFileWAVEType, &error));
    auto recorder = std::make_shared<WritingReceiver>(&writer);
    c.addOutputReceiver(recorder);

    auto player = AudioFilePlayer::audioFilePlayerWithURL(file, &c, &error);
    ASSERT_NE(player, nullptr);
    EXPECT_DOUBLE_EQ(player->duration(), 1000.0 / 44100.0);
    EXPECT_EQ(player->url(), file);
    bool completed = false;
    player->completionBlock = [&] { completed = true; };
    player->setRemoveUponFinish(true);
    c.addChannels({player});
    c.renderOffline(2048);
    EXPECT_FALSE(completed) << "told on the main thread only";
    EXPECT_FALSE(player->channelIsPlaying());
    main.runPending();
    c.pollForMessageResponses();
    EXPECT_TRUE(completed);
    EXPECT_TRUE(c.channels().empty()) << "removed upon finish";

    c.removeOutputReceiver(recorder);
    writer.finishWriting();
    EXPECT_EQ(recorder->failures.load(), 0);
    SF_INFO info;
    auto out = readWithSndfile(path("out.wav"), &info);
    ASSERT_EQ(info.frames, 2048);
    for (size_t i = 0; i < 2048; ++i) {
        ASSERT_EQ(out[2 * i], i < 1000 ? samples[2 * i] : 0) << i;
        ASSERT_EQ(out[2 * i + 1], i < 1000 ? samples[2 * i + 1] : 0) << i;
    }

    EXPECT_EQ(AudioFilePlayer::audioFilePlayerWithURL(path("missing.wav"), &c, &error), nullptr);
    EXPECT_EQ(error.localizedDescription, "Couldn't open the audio file");
}

TEST_F(AudioFileTest, LoopingPlayerWrapsSeamlesslyAndSaysSo) {
    const auto samples = stereoSamples(300);
    const std::string file = writeWithSndfile("loop.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2, samples);
    RunLoopMainThread main;
    AudioController c(kEngine, false, offlineOptions(&main));
    AudioError error;
    ASSERT_TRUE(c.start(&error));
    auto player = AudioFilePlayer::audioFilePlayerWithURL(file, &c, &error);
    ASSERT_NE(player, nullptr);
    player->setLoop(true);
    int loops = 0;
    player->startLoopBlock = [&] { ++loops; };
    c.addChannels({player});
    EngineBuffer out(1024);
    c.renderOffline(1024, out.list);
    for (size_t i = 0; i < 1024; ++i) ASSERT_EQ(out.left()[i], samples[2 * (i % 300)]) << i;
    c.pollForMessageResponses();
    EXPECT_EQ(loops, 3);
    EXPECT_TRUE(player->channelIsPlaying());
    EXPECT_NEAR(player->currentTime(), (1024 - 900) / 44100.0, 1e-9);

    // A notification for a player that is gone by then is dropped.
    c.removeChannels({player});
    EngineBuffer more(300);
    player->render(&c, AudioTimeStamp{0, 0}, 300, more.list);  // wraps once more
    player.reset();
    c.pollForMessageResponses();
    EXPECT_EQ(loops, 3);
}

}  // namespace
