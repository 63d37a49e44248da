// Every built-in sound as the players get it: through the engine's loader,
// in the engine's format.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "tests/resources/BuiltinNames.h"

TEST(BuiltinSoundsLoad, EverySoundLoadsIntoTheEngineFormatReadyToPlay) {
    const AudioStreamDescription engine = AudioController::nonInterleaved16BitStereoAudioDescription();
    for (const std::string& name : builtinSoundNames()) {
        AudioFileLoaderOperation op(std::string(QUILLO_TEST_SOUNDS_DIR) + "/" + name + ".wav", engine);
        op.start();
        ASSERT_FALSE(op.error()) << name << ": " << op.error()->localizedDescription;
        ASSERT_NE(op.bufferList(), nullptr) << name;
        const uint32_t n = op.lengthInFrames();
        EXPECT_GT(n, 4410u) << name;  // at least a tenth of a second
        const auto* l = static_cast<const int16_t*>(op.bufferList()->mBuffers[0].mData);
        const auto* r = static_cast<const int16_t*>(op.bufferList()->mBuffers[1].mData);
        int clipped = 0;
        for (uint32_t k = 0; k < n; ++k) clipped += l[k] == 32767 || l[k] == -32768 || r[k] == 32767 || r[k] == -32768;
        EXPECT_EQ(clipped, 0) << name;
        // A note starts at the sound's first frame: something must be audible at once.
        int firstLoud = -1;
        for (uint32_t k = 0; k < n && firstLoud < 0; ++k)
            if (std::abs(l[k]) > 300 || std::abs(r[k]) > 300) firstLoud = static_cast<int>(k);
        EXPECT_GE(firstLoud, 0) << name;
        EXPECT_LT(firstLoud, 441) << name << " starts " << firstLoud << " frames late";
        std::free(op.bufferList()->mBuffers[0].mData);
        std::free(op.bufferList()->mBuffers[1].mData);
        std::free(op.bufferList());
    }
}
