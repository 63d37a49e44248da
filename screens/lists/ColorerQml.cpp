#include "screens/lists/ColorerQml.h"

#include <algorithm>

namespace {
// A lightened colour may exceed 1 in the palette's arithmetic; the screen shows it at full.
double clamp01(double v) { return std::clamp(v, 0.0, 1.0); }
}  // namespace

QColor ColorerQml::toQColor(const Color& c) {
    return QColor::fromRgbF(static_cast<float>(clamp01(c.r)), static_cast<float>(clamp01(c.g)),
                            static_cast<float>(clamp01(c.b)), static_cast<float>(clamp01(c.a)));
}

QColor ColorerQml::shaded(const QColor& color, double delta) {
    Color in{color.redF(), color.greenF(), color.blueF(), color.alphaF()};
    std::optional<Color> out = Colorer::changedColorForColor(in, delta);
    return out ? toQColor(*out) : color;
}
