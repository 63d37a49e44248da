// The live input trace draws every 16th of the newest samples, tapered at both ends.
#include <gtest/gtest.h>

#include <vector>

#include "recording/OscilloscopeLayer.h"

TEST(OscilloscopeLayer, DrawsEverySixteenthOfTheNewestSamplesWithTaperedEnds) {
    OscilloscopeLayer layer;
    std::vector<int16_t> left, right(5000, 12345);  // the right channel is never drawn
    for (int k = 0; k < 5000; ++k) left.push_back(int16_t((k * 37) % 65536 - 32768));
    // Uneven blocks, one larger than the conversion buffer.
    for (auto [from, n] : {std::pair{0u, 100u}, {100u, 4500u}, {4600u, 400u}}) {
        AudioBufferList list{2, {{1, n * 2, left.data() + from}, {1, n * 2, right.data() + from}}};
        layer.receiverCallback(nullptr, nullptr, AudioTimeStamp{}, n, &list);
    }
    const double w = 320, h = 100;
    const auto points = layer.points(w, h);
    ASSERT_EQ(points.size(), 127u);
    // The ring holds frames 2952..4999; the oldest is left out.
    for (int i = 0; i < 127; ++i) {
        const double taper = i == 126 ? 1.0 : i < 63 ? (i + 1) / 63.0 : (125 - i) / 63.0;
        EXPECT_DOUBLE_EQ(points[size_t(i)].x, i * (w / 2046.0 * 17.0)) << i;
        EXPECT_NEAR(points[size_t(i)].y, left[size_t(2953 + 16 * i)] / 32768.0 * h / 2 * taper + h / 2, 1e-9) << i;
    }
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(62), 1.0);
    EXPECT_DOUBLE_EQ(OscilloscopeLayer::taper(125), 0.0);
    EXPECT_DOUBLE_EQ(layer.peak(), 32750 / 32768.0);  // the loudest of the newest samples
}
