#include "resources/generator/PhotoPainter.h"

#include <QFile>
#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "library/palette/Colorer.h"

namespace resgen {
namespace {

QColor toQColor(const Color& c, double alpha = 1.0) {
    auto unit = [](double v) { return std::clamp(v, 0.0, 1.0); };
    return QColor::fromRgbF(float(unit(c.r)), float(unit(c.g)), float(unit(c.b)), float(unit(c.a * alpha)));
}

// FNV-1a: a stable seed from the name.
uint64_t nameSeed(const std::string& name) {
    uint64_t h = 1469598103934665603ull;
    for (unsigned char ch : name) {
        h ^= ch;
        h *= 1099511628211ull;
    }
    return h;
}

class Dice {
public:
    explicit Dice(uint64_t seed) : state_(seed | 1) {}
    double next() {  // [0, 1)
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return double((state_ * 0x2545F4914F6CDD1Dull) >> 11) * (1.0 / 9007199254740992.0);
    }
    double between(double lo, double hi) { return lo + (hi - lo) * next(); }

private:
    uint64_t state_;
};

void drawDrum(QPainter& p, const QColor& ink, const QColor& bg) {
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawRect(QRectF(90, 150, 140, 80));
    p.drawEllipse(QPointF(160, 230), 70, 20);
    p.setBrush(bg.lighter(130));
    p.drawEllipse(QPointF(160, 150), 70, 20);
    QPen lace(bg, 4);
    p.setPen(lace);
    for (int i = 0; i < 6; ++i) {
        const double x = 100 + i * 24;
        p.drawLine(QPointF(x, 172), QPointF(x + 12, 236));
        p.drawLine(QPointF(x + 24, 172), QPointF(x + 12, 236));
    }
    QPen stick(ink, 9, Qt::SolidLine, Qt::RoundCap);
    p.setPen(stick);
    p.drawLine(QPointF(95, 50), QPointF(170, 135));
    p.drawLine(QPointF(225, 50), QPointF(150, 135));
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawEllipse(QPointF(95, 50), 9, 9);
    p.drawEllipse(QPointF(225, 50), 9, 9);
}

void drawSax(QPainter& p, const QColor& ink, const QColor& bg) {
    QPainterPath body;
    body.moveTo(105, 48);
    body.cubicTo(130, 40, 150, 50, 150, 80);
    body.lineTo(150, 205);
    body.cubicTo(150, 262, 215, 262, 215, 205);
    body.lineTo(215, 180);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(ink, 28, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPath(body);
    QPolygonF bell;
    bell << QPointF(200, 185) << QPointF(230, 185) << QPointF(252, 140) << QPointF(178, 140);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawPolygon(bell);
    p.setPen(QPen(ink, 8, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(95, 52), QPointF(108, 47));  // mouthpiece
    p.setPen(Qt::NoPen);
    p.setBrush(bg);
    for (int i = 0; i < 5; ++i) p.drawEllipse(QPointF(150, 100 + i * 22), 6, 6);
}

void drawGuitar(QPainter& p, const QColor& ink, const QColor& bg, bool bass) {
    const double lower = bass ? 48 : 58, upper = bass ? 36 : 44;
    const double bodyY = bass ? 225 : 210;
    const double headTop = bass ? 44 : 50;  // below the name
    const int strings = bass ? 4 : 6;
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawEllipse(QPointF(160, bodyY), lower, lower);
    p.drawEllipse(QPointF(160, bodyY - lower - upper * 0.45), upper, upper);
    p.drawRect(QRectF(149, headTop + 22, 22, bodyY - headTop - 40));
    p.drawRoundedRect(QRectF(143, headTop, 34, 30), 6, 6);
    p.setBrush(bg);
    if (bass) {
        p.drawRect(QRectF(140, bodyY - 30, 40, 10));
        p.drawRect(QRectF(140, bodyY + 2, 40, 10));
    } else {
        p.drawEllipse(QPointF(160, bodyY - lower * 0.45), 17, 17);
    }
    p.drawRect(QRectF(140, bodyY + lower * 0.5, 40, 8));  // bridge
    p.setPen(QPen(bg, 1.5));
    for (int s = 0; s < strings; ++s) {
        const double x = 152 + s * (16.0 / (strings - 1));
        p.drawLine(QPointF(x, headTop + 26), QPointF(x, bodyY + lower * 0.5));
    }
}

void drawKeys(QPainter& p, const QColor& ink, const QColor& bg) {
    const QRectF board(45, 105, 230, 125);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawRoundedRect(board, 8, 8);
    const double keyWidth = board.width() / 7;
    p.setPen(QPen(bg, 3));
    for (int k = 1; k < 7; ++k) {
        const double x = board.left() + k * keyWidth;
        p.drawLine(QPointF(x, board.top()), QPointF(x, board.bottom()));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(bg.darker(140));
    for (int k : {1, 2, 4, 5, 6}) {
        const double x = board.left() + k * keyWidth - keyWidth * 0.3;
        p.drawRect(QRectF(x, board.top(), keyWidth * 0.6, board.height() * 0.58));
    }
}

void drawPad(QPainter& p, const QColor& ink) {
    p.setBrush(Qt::NoBrush);
    for (int w = 0; w < 3; ++w) {
        QPainterPath wave;
        const double amplitude = 38 - w * 10, y0 = 120 + w * 40;
        for (int x = 40; x <= 280; x += 4) {
            const double y = y0 + amplitude * std::sin((x - 40) / 240.0 * 2 * std::numbers::pi * (1 + 0.5 * w) + w);
            if (x == 40) wave.moveTo(x, y);
            else wave.lineTo(x, y);
        }
        QColor c = ink;
        c.setAlpha(ink.alpha() - 60 * w);
        p.setPen(QPen(c, 12 - 3 * w, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPath(wave);
    }
}

void drawVoice(QPainter& p, const QColor& ink, const QColor& bg) {
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawRoundedRect(QRectF(128, 45, 64, 115), 32, 32);
    p.setPen(QPen(bg, 3));
    for (int i = 0; i < 4; ++i) p.drawLine(QPointF(134, 75 + i * 16), QPointF(186, 75 + i * 16));
    p.setPen(QPen(ink, 9, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(108, 90, 104, 100), 180 * 16, 180 * 16);
    p.drawLine(QPointF(160, 190), QPointF(160, 235));
    p.drawLine(QPointF(125, 240), QPointF(195, 240));
}

void drawTurntable(QPainter& p, const QColor& ink, const QColor& bg) {
    p.setPen(Qt::NoPen);
    QColor plinth = ink;
    plinth.setAlpha(90);
    p.setBrush(plinth);
    p.drawRoundedRect(QRectF(40, 65, 240, 190), 14, 14);
    p.setBrush(ink);
    p.drawEllipse(QPointF(145, 160), 82, 82);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(bg, 1.5));
    for (int r = 36; r < 80; r += 9) p.drawEllipse(QPointF(145, 160), r, r);
    p.setPen(Qt::NoPen);
    p.setBrush(bg);
    p.drawEllipse(QPointF(145, 160), 22, 22);
    p.setBrush(ink);
    p.drawEllipse(QPointF(145, 160), 4, 4);
    p.drawEllipse(QPointF(250, 90), 12, 12);
    p.setPen(QPen(ink, 7, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(250, 90), QPointF(240, 200));
    p.drawLine(QPointF(240, 200), QPointF(205, 222));
}

void drawEffect(QPainter& p, const QColor& ink, Dice& dice) {
    QPolygonF star;
    const int points = 12;
    for (int i = 0; i < 2 * points; ++i) {
        const double a = i * std::numbers::pi / points;
        const double r = (i % 2 == 0) ? 100 : 48;
        star << QPointF(160 + r * std::sin(a), 160 - r * std::cos(a));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    p.drawPolygon(star);
    for (int i = 0; i < 10; ++i) {
        const double a = dice.between(0, 2 * std::numbers::pi), r = dice.between(110, 140);
        p.drawEllipse(QPointF(160 + r * std::cos(a), 160 + r * std::sin(a)), 5, 5);
    }
}

void drawPictogram(QPainter& p, Family family, const QColor& ink, const QColor& bg, Dice& dice) {
    switch (family) {
        case Family::Drum: drawDrum(p, ink, bg); break;
        case Family::Sax: drawSax(p, ink, bg); break;
        case Family::Guitar: drawGuitar(p, ink, bg, false); break;
        case Family::Bass: drawGuitar(p, ink, bg, true); break;
        case Family::Keys: drawKeys(p, ink, bg); break;
        case Family::Pad: drawPad(p, ink); break;
        case Family::Voice: drawVoice(p, ink, bg); break;
        case Family::Turntable: drawTurntable(p, ink, bg); break;
        case Family::Effect: drawEffect(p, ink, dice); break;
    }
}

}  // namespace

QImage paintSoundPhoto(const SoundSpec& sound) {
    QImage image(kPhotoSize, kPhotoSize, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);

    const Color hue = Colorer::colorForNumber(sound.color);
    const QColor bg = toQColor(hue);
    QLinearGradient gradient(0, 0, 0, kPhotoSize);
    gradient.setColorAt(0, toQColor(*Colorer::lighterColorForColor(hue)));
    gradient.setColorAt(1, toQColor(*Colorer::darkerColorForColor(hue)));
    p.fillRect(image.rect(), gradient);

    // Circles in lighter and darker shades, placed by the name.
    Dice dice(nameSeed(sound.name));
    p.setPen(Qt::NoPen);
    for (int i = 0; i < 16; ++i) {
        const bool light = dice.next() < 0.5;
        const Color shade = *Colorer::changedColorForColor(hue, light ? 0.25 : -0.25);
        p.setBrush(toQColor(shade, dice.between(0.25, 0.6)));
        const double r = dice.between(10, 55);
        p.drawEllipse(QPointF(dice.between(0, kPhotoSize), dice.between(0, kPhotoSize)), r, r);
    }

    // White on dark and middle shades, a deep shade of the hue on light ones.
    const double luminance = 0.2126 * hue.r + 0.7152 * hue.g + 0.0722 * hue.b;
    QColor ink = luminance < 0.62 ? QColor(255, 255, 255, 235) : toQColor(*Colorer::changedColorForColor(hue, -0.45), 0.9);
    drawPictogram(p, sound.family, ink, bg, dice);

    ink.setAlpha(245);
    p.setPen(ink);
    QFont nameFont("DejaVu Sans");
    nameFont.setPixelSize(20);
    nameFont.setBold(true);
    p.setFont(nameFont);
    p.drawText(QRectF(14, 8, kPhotoSize - 28, 30), Qt::AlignLeft | Qt::AlignVCenter, QString::fromStdString(sound.name));
    if (!sound.label.empty()) {
        QFont noteFont("DejaVu Sans");
        noteFont.setPixelSize(58);
        noteFont.setBold(true);
        p.setFont(noteFont);
        p.drawText(QRectF(14, kPhotoSize - 84, kPhotoSize - 28, 76), Qt::AlignRight | Qt::AlignBottom,
                   QString::fromStdString(sound.label));
    }
    p.end();
    return image;
}

QImage paintPlaceholderPhoto() {
    QImage image(kPhotoSize, kPhotoSize, QImage::Format_RGB32);
    image.fill(QColor(150, 150, 150));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(175, 175, 175), 6));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(40, 40, kPhotoSize - 80, kPhotoSize - 80), 24, 24);
    p.end();
    return image;
}

bool saveJpeg(const QImage& image, const std::string& path, std::string& error) {
    const QString target = QString::fromStdString(path);
    const QString temp = target + ".part";
    if (!image.save(temp, "JPG", 90)) {
        error = path + ": cannot write JPEG";
        QFile::remove(temp);
        return false;
    }
    QFile::remove(target);
    if (!QFile::rename(temp, target)) {
        error = path + ": cannot rename into place";
        QFile::remove(temp);
        return false;
    }
    return true;
}

}  // namespace resgen
