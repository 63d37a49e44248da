#pragma once
// The palette. Sounds and track rows carry a colour number (0 to 143) instead
// of a colour: sixteen rows, one hue each, by nine shades. Column 4 is the hue
// itself; lower columns are darker and higher ones lighter, 0.06 per column.
// Plain C++ so that the export's frame drawing and the screens share it.
#include <cstdint>
#include <optional>

struct Color {
    double r = 0, g = 0, b = 0, a = 1;  // 0 to 1; a lightened colour may exceed 1
    bool operator==(const Color&) const = default;
};

class Colorer {
public:
    // Interface colours.
    static Color barColor();
    static Color mainColor();
    static Color backgColor();
    static Color darkBlueColor();
    static Color lightBlueColor();
    static Color mediumDarkBlueColor();
    static Color mediumLightBlueColor();
    static Color darkGreyBlueColor();

    // Hue colours, one per palette row (row 0 first).
    static Color pinkPurpleColor();
    static Color redColor();
    static Color orangeBrownColor();
    static Color orangeColor();
    static Color yellowColor();
    static Color brownColor();
    static Color grayColor();
    static Color blueGreayColor();
    static Color pinkGreyColor();
    static Color violetColor();
    static Color coldBlueColor();
    static Color greenGreyColor();
    static Color greenBlueColor();
    static Color turqueseColor();
    static Color greenYellowColor();
    static Color greenColor();

    // The palette colour of a colour number. The remainder by 144 keeps the
    // number's sign, so a negative number lands on a column below 0 (a deeper
    // shade of row 0's hue) rather than wrapping round.
    static Color colorForNumber(int32_t number);
    // Rows outside 0 to 15 take coldBlueColor; any column follows the shade formula.
    static Color colorforRow(int row, int col);
    // A colour number for a new sound: any row, a middle shade (columns 2 to 5).
    static int32_t randomColorNum();

    // Adds delta to red, green and blue; a result below 0 becomes 0, nothing
    // caps it above. Alpha is kept. No colour in gives no colour out.
    static std::optional<Color> changedColorForColor(std::optional<Color> color, double delta);
    static std::optional<Color> darkerColorForColor(std::optional<Color> color);       // -0.1
    static std::optional<Color> veryDarkerColorForColor(std::optional<Color> color);   // -0.3
    static std::optional<Color> lighterColorForColor(std::optional<Color> color);      // +0.1
    static std::optional<Color> veryLighterColorForColor(std::optional<Color> color);  // +0.3
};
