#include <gtest/gtest.h>

#include <set>

#include "library/palette/Colorer.h"

namespace {

void expectNear(const Color& actual, const Color& expected) {
    EXPECT_NEAR(actual.r, expected.r, 1e-12);
    EXPECT_NEAR(actual.g, expected.g, 1e-12);
    EXPECT_NEAR(actual.b, expected.b, 1e-12);
    EXPECT_EQ(actual.a, expected.a);
}

}  // namespace

TEST(Colorer, NumbersMapOntoRowsAndShades) {
    expectNear(Colorer::colorForNumber(4), Colorer::pinkPurpleColor());
    expectNear(Colorer::colorForNumber(76), Colorer::pinkGreyColor());  // row 8, column 4
    expectNear(Colorer::colorForNumber(148), Colorer::colorForNumber(4));
    expectNear(Colorer::colorForNumber(144), Colorer::colorForNumber(0));
    expectNear(Colorer::colorForNumber(143), *Colorer::changedColorForColor(Colorer::greenColor(), 0.24));
    expectNear(Colorer::colorForNumber(9 * 13 + 1), *Colorer::changedColorForColor(Colorer::turqueseColor(), -0.18));

    // -5 keeps its sign: row 0, column -5, nine shades below the hue.
    const Color pp = Colorer::pinkPurpleColor();
    const Color deep = Colorer::colorForNumber(-5);
    EXPECT_NEAR(deep.r, pp.r - 0.54, 1e-12);
    EXPECT_EQ(deep.g, 0.0);  // 48/255 - 0.54 clamps
    EXPECT_EQ(deep.b, 0.0);  // 115/255 - 0.54 clamps
    EXPECT_EQ(deep.a, 1.0);
}

TEST(Colorer, RowsOutsideThePaletteAreColdBlue) {
    expectNear(Colorer::colorforRow(16, 4), Colorer::coldBlueColor());
    expectNear(Colorer::colorforRow(-1, 4), Colorer::coldBlueColor());
    expectNear(Colorer::colorforRow(99, 6), *Colorer::changedColorForColor(Colorer::coldBlueColor(), 0.12));
    expectNear(Colorer::colorforRow(2, 11), *Colorer::changedColorForColor(Colorer::orangeBrownColor(), 0.42));
}

TEST(Colorer, ShadesClampOnlyBelowAndKeepAlpha) {
    const Color white = Colorer::backgColor();
    const Color lighter = *Colorer::lighterColorForColor(white);
    EXPECT_GT(lighter.r, 1.0);
    EXPECT_GT(lighter.g, 1.0);
    EXPECT_GT(lighter.b, 1.0);
    EXPECT_NEAR(Colorer::veryLighterColorForColor(white)->r, 1.3, 1e-12);

    const Color translucent{0.05, 0.5, 0.95, 0.25};
    const Color darker = *Colorer::veryDarkerColorForColor(translucent);
    EXPECT_EQ(darker.r, 0.0);
    EXPECT_NEAR(darker.g, 0.2, 1e-12);
    EXPECT_NEAR(darker.b, 0.65, 1e-12);
    EXPECT_EQ(darker.a, 0.25);
    EXPECT_NEAR(Colorer::darkerColorForColor(translucent)->g, 0.4, 1e-12);

    EXPECT_FALSE(Colorer::changedColorForColor(std::nullopt, 0.1).has_value());
    EXPECT_FALSE(Colorer::darkerColorForColor(std::nullopt).has_value());
}

TEST(Colorer, RandomNumbersUseOnlyMiddleShadesOfEveryRow) {
    std::set<int32_t> seen;
    for (int i = 0; i < 20000; ++i) {
        const int32_t n = Colorer::randomColorNum();
        ASSERT_GE(n, 0);
        ASSERT_LT(n, 144);
        const int32_t col = n % 9;
        ASSERT_GE(col, 2) << n;
        ASSERT_LE(col, 5) << n;
        seen.insert(n);
    }
    EXPECT_EQ(seen.size(), 64u);  // 16 rows x 4 shades, each about 312 times in 20000 draws
}
