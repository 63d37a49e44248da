#include "library/palette/Colorer.h"

#include <algorithm>
#include <random>

namespace {

constexpr Color rgb255(int r, int g, int b) { return Color{r / 255.0, g / 255.0, b / 255.0, 1.0}; }

constexpr int kRows = 16;
constexpr int kColumns = 9;
constexpr int kHueColumn = 4;
constexpr double kShadeStep = 0.06;

}  // namespace

Color Colorer::barColor() { return rgb255(0, 122, 255); }
Color Colorer::mainColor() { return rgb255(37, 140, 255); }
Color Colorer::backgColor() { return rgb255(255, 255, 255); }
Color Colorer::darkBlueColor() { return rgb255(6, 86, 175); }
Color Colorer::lightBlueColor() { return rgb255(125, 186, 255); }
Color Colorer::mediumDarkBlueColor() { return rgb255(3, 116, 242); }
Color Colorer::mediumLightBlueColor() { return rgb255(102, 174, 255); }
Color Colorer::darkGreyBlueColor() { return rgb255(56, 90, 126); }

Color Colorer::pinkPurpleColor() { return rgb255(183, 48, 115); }
Color Colorer::redColor() { return rgb255(255, 18, 65); }
Color Colorer::orangeBrownColor() { return rgb255(200, 40, 9); }
Color Colorer::orangeColor() { return rgb255(230, 140, 3); }
Color Colorer::yellowColor() { return rgb255(200, 180, 18); }
Color Colorer::brownColor() { return rgb255(150, 100, 75); }
Color Colorer::grayColor() { return rgb255(120, 120, 120); }
Color Colorer::blueGreayColor() { return rgb255(100, 120, 140); }
Color Colorer::pinkGreyColor() { return rgb255(175, 110, 155); }
Color Colorer::violetColor() { return rgb255(116, 45, 192); }
Color Colorer::coldBlueColor() { return rgb255(95, 105, 145); }
Color Colorer::greenGreyColor() { return rgb255(75, 140, 125); }
Color Colorer::greenBlueColor() { return rgb255(50, 120, 160); }
Color Colorer::turqueseColor() { return rgb255(5, 150, 115); }
Color Colorer::greenYellowColor() { return rgb255(110, 145, 50); }
Color Colorer::greenColor() { return rgb255(72, 177, 58); }

Color Colorer::colorForNumber(int32_t number) {
    const int32_t m = number % (kRows * kColumns);  // C++ remainder keeps the sign
    const int32_t row = m / kColumns;               // truncates toward zero
    const int32_t col = m - kColumns * row;
    return colorforRow(row, col);
}

Color Colorer::colorforRow(int row, int col) {
    using Hue = Color (*)();
    static constexpr Hue hues[kRows] = {
        pinkPurpleColor, redColor,      orangeBrownColor, orangeColor,
        yellowColor,     brownColor,    grayColor,        blueGreayColor,
        pinkGreyColor,   violetColor,   coldBlueColor,    greenGreyColor,
        greenBlueColor,  turqueseColor, greenYellowColor, greenColor,
    };
    const Color hue = (row >= 0 && row < kRows) ? hues[row]() : coldBlueColor();
    if (col == kHueColumn) return hue;
    const double delta = col < kHueColumn ? -kShadeStep * (kHueColumn - col) : kShadeStep * (col - kHueColumn);
    return *changedColorForColor(hue, delta);
}

int32_t Colorer::randomColorNum() {
    thread_local std::mt19937 engine{std::random_device{}()};
    std::uniform_int_distribution<int32_t> rowDist(0, kRows - 1);
    std::uniform_int_distribution<int32_t> offsetDist(0, 3);
    const int32_t row = rowDist(engine);
    const int32_t offset = offsetDist(engine);
    return kColumns * row + offset + 2;
}

std::optional<Color> Colorer::changedColorForColor(std::optional<Color> color, double delta) {
    if (!color) return std::nullopt;
    auto shift = [delta](double v) { return std::max(0.0, v + delta); };
    return Color{shift(color->r), shift(color->g), shift(color->b), color->a};
}

std::optional<Color> Colorer::darkerColorForColor(std::optional<Color> color) {
    return changedColorForColor(color, -0.1);
}
std::optional<Color> Colorer::veryDarkerColorForColor(std::optional<Color> color) {
    return changedColorForColor(color, -0.3);
}
std::optional<Color> Colorer::lighterColorForColor(std::optional<Color> color) {
    return changedColorForColor(color, 0.1);
}
std::optional<Color> Colorer::veryLighterColorForColor(std::optional<Color> color) {
    return changedColorForColor(color, 0.3);
}
