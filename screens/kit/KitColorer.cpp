#include "screens/kit/KitColorer.h"

#include <algorithm>

// A lightened colour may exceed 1 in the palette's arithmetic; the screen shows it saturated.
QColor toQColor(const Color& c) {
    auto unit = [](double v) { return static_cast<float>(std::clamp(v, 0.0, 1.0)); };
    return QColor::fromRgbF(unit(c.r), unit(c.g), unit(c.b), unit(c.a));
}

Color fromQColor(const QColor& c) {
    const QColor rgb = c.toRgb();
    return Color{rgb.redF(), rgb.greenF(), rgb.blueF(), rgb.alphaF()};
}

QColor KitColorer::colorForNumber(int number) { return toQColor(Colorer::colorForNumber(number)); }
QColor KitColorer::darkerColorForColor(const QColor& c) { return toQColor(*Colorer::darkerColorForColor(fromQColor(c))); }
QColor KitColorer::veryDarkerColorForColor(const QColor& c) {
    return toQColor(*Colorer::veryDarkerColorForColor(fromQColor(c)));
}
QColor KitColorer::lighterColorForColor(const QColor& c) { return toQColor(*Colorer::lighterColorForColor(fromQColor(c))); }
QColor KitColorer::veryLighterColorForColor(const QColor& c) {
    return toQColor(*Colorer::veryLighterColorForColor(fromQColor(c)));
}
