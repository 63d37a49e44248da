#include "screens/soundeditor/SoundColorView.h"

#include <algorithm>

#include "screens/kit/KitColorer.h"

SoundColorView::SoundColorView(QObject* parent) : QObject(parent) {}

void SoundColorView::setColorNumBefore(int number) {
    if (number == m_colorNumBefore) return;
    m_colorNumBefore = number;
    emit colorNumBeforeChanged();
}

void SoundColorView::setOnFScircle(bool on) {
    if (on == m_onFScircle) return;
    m_onFScircle = on;
    emit onFScircleChanged();
}

int SoundColorView::colorNumberAt(QPointF point, QSizeF screen) {
    if (screen.width() <= 0 || screen.height() <= 0) return 0;
    const int column = static_cast<int>(point.x() / (screen.width() / kColumns));
    const int row = static_cast<int>(point.y() / (screen.height() * kRowHeightFactor));
    return std::clamp(row, 0, kRows - 1) * kColumns + std::clamp(column, 0, kColumns - 1);
}

QColor SoundColorView::colorforRow(int row, int column) {
    return KitColorer::colorForNumber(row * kColumns + column);
}

void SoundColorView::touchAt(double x, double y, double screenWidth, double screenHeight) {
    emit colorPicked(colorNumberAt(QPointF(x, y), QSizeF(screenWidth, screenHeight)));
    emit removeSoundColorView();
}
