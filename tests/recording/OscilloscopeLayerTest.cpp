// The live input trace: which samples it draws, where, and when it redraws.
#include <gtest/gtest.h>

#include <vector>

#include "recording/OscilloscopeLayer.h"

namespace {

void feed(OscilloscopeLayer& layer, const std::vector<int16_t>& left, uint32_t from, uint32_t frames) {
    std::vector<int16_t> right(frames, 12345);  // never drawn
    AudioBufferList list{};
    list.mNumberBuffers = 2;
    list.mBuffers[0] = {1, frames * 2, const_cast<int16_t*>(left.data() + from)};
    list.mBuffers[1] = {1, frames * 2, right.data()};
    layer.receiverCallback(nullptr, nullptr, AudioTimeStamp{}, frames, &list);
}

TEST(OscilloscopeLayer, DrawsEverySixteenthOfTheNewestSamplesWithTaperedEnds) {
    OscilloscopeLayer layer;
    // 5000 frames in uneven blocks, one larger than the conversion buffer.
    std::vector<int16_t> left;
    for (int k = 0; k < 5000; ++k) left.push_back(int16_t((k * 37) % 65536 - 32768));
    feed(layer, left, 0, 100);
    feed(layer, left, 100, 4500);
    feed(layer, left, 4600, 400);

    const double w = 320, h = 100;
    const auto points = layer.points(w, h);
    ASSERT_EQ(points.size(), 127u);
    // The ring holds the newest 2048 samples; the oldest (frame 2952) is left
    // out and the trace starts with the one after it.
    for (int i = 0; i < 127; ++i) {
        const double sample = left[size_t(2953 + 16 * i)] / 32768.0;
        double taper = i < 63 ? (i + 1) / 63.0 : (62 - (i - 63)) / 63.0;
        if (i == 126) taper = 1.0;
        EXPECT_DOUBLE_EQ(points[size_t(i)].x, i * (w / 2046.0 * 17.0)) << i;
        EXPECT_NEAR(points[size_t(i)].y, sample * h / 2 * taper + h / 2, 1e-9) << i;
    }
    // The ramps: up to full height at point 62, down to nothing at 125, and
    // the last point outside both.
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(0), 1.0 / 63);
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(62), 1.0);
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(63), 62.0 / 63);
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(125), 0.0);
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(126), 1.0);
}

TEST(OscilloscopeLayer, RedrawsOnEveryTickWhileStartedOnly) {
    auto clock = std::make_unique<ManualRefreshClock>();
    ManualRefreshClock* ticks = clock.get();
    OscilloscopeLayer layer(std::move(clock));
    layer.width = 200;
    layer.height = 80;
    int redraws = 0;
    layer.onDisplay = [&](const std::vector<OscilloscopePoint>& p) {
        ++redraws;
        ASSERT_EQ(p.size(), 127u);
        EXPECT_DOUBLE_EQ(p[0].y, 40.0);  // silence sits on the middle line
    };
    EXPECT_FALSE(ticks->tick());
    layer.start();
    EXPECT_DOUBLE_EQ(ticks->interval(), 1.0 / 30.0);
    EXPECT_TRUE(ticks->tick());
    EXPECT_TRUE(ticks->tick());
    layer.stop();
    EXPECT_FALSE(ticks->tick());
    EXPECT_EQ(redraws, 2);
}

}  // namespace
