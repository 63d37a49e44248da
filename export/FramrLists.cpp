// Frames of the library lists, the side menu and the name-and-folder panel.
#include <algorithm>
#include <cmath>

#include "export/Framr.h"

namespace {

// A list row is about 68 points on a 390 x 844 phone, never under 56.
constexpr double kUsualCellFraction = 0.08;
constexpr double kUsualCellMin = 56.0;
constexpr double kUsualCellMax = 80.0;
// The side menu shows this much of itself (the top screen slides this far right).
constexpr double kMenuReveal = 250.0;

double cellHei() { return Framr::heightForUsualCell(); }

}  // namespace

// ---- Name-and-folder panel

QRectF Framr::ffNameOfSound(bool forSound) {
    const double w = scrnWid(), h = scrnHei();
    if (forSound) return {0.1 * w, 0.065 * h, 0.8 * w, 0.05 * h};
    return {0.1 * w, 0.3 * h, 0.8 * w, 0.08 * h};
}

QRectF Framr::ffFolderName(bool forSound) {
    const double w = scrnWid(), h = scrnHei();
    if (forSound) return {0.2 * w, 0.118 * h, 0.6 * w, 0.038 * h};
    return {0.15 * w, 0.4 * h, 0.7 * w, 0.065 * h};
}

QRectF Framr::ffFolderIcon(const QRectF& folderButton, bool sound) {
    // A square at the button's left end; a little smaller on the slim sound button.
    const double side = folderButton.height() * (sound ? 0.8 : 0.65);
    const double inset = (folderButton.height() - side) / 2.0;
    return {inset * 2.0, inset, side, side};
}

QRectF Framr::ffSoundFolderTable() {
    const double w = scrnWid(), h = scrnHei();
    return {0.08 * w, 0.1 * h, 0.84 * w, 0.62 * h};
}

QRectF Framr::ffSoundFolderAddButton() {
    const double side = std::clamp(0.16 * scrnWid(), 48.0, 72.0);
    return {(scrnWid() - side) / 2.0, 0.76 * scrnHei(), side, side};
}

QRectF Framr::ffSoundFolderNameField() {
    const double w = scrnWid(), h = scrnHei();
    return {0.1 * w, 0.3 * h, 0.8 * w, 0.07 * h};
}

QRectF Framr::ffSoundFolderOkOrCancelButton(bool ok) {
    const double side = std::clamp(0.16 * scrnWid(), 48.0, 72.0);
    const double y = 0.42 * scrnHei();
    return {ok ? 0.75 * scrnWid() - side / 2.0 : 0.25 * scrnWid() - side / 2.0, y, side, side};
}

// ---- Lists

double Framr::heightForUsualCell() {
    return std::clamp(std::round(scrnHei() * kUsualCellFraction), kUsualCellMin, kUsualCellMax);
}

QRectF Framr::ffFolderCellTriangle() {
    const double side = cellHei() * 0.3;
    return {0.04 * scrnWid(), (cellHei() - side) / 2.0, side, side};
}

QRectF Framr::ffFolderCellFolderImg() {
    const QRectF tri = ffFolderCellTriangle();
    const double side = cellHei() * 0.5;
    return {tri.right() + 0.03 * scrnWid(), (cellHei() - side) / 2.0, side, side};
}

QRectF Framr::ffFolderCellName() {
    const QRectF img = ffFolderCellFolderImg();
    const double x = img.right() + 0.04 * scrnWid();
    return {x, 0, scrnWid() - x - 0.04 * scrnWid(), cellHei()};
}

QRectF Framr::ffItemCellPlayButton() {
    const double side = cellHei() * 0.62;
    return {0.05 * scrnWid(), (cellHei() - side) / 2.0, side, side};
}

QRectF Framr::ffItemCellNameOrAuthor(bool author) {
    const QRectF play = ffItemCellPlayButton();
    const double x = play.right() + 0.04 * scrnWid();
    // Leaves room on the right for the colour tiles, dot or length.
    const double width = scrnWid() - x - 0.3 * scrnWid();
    if (author) return {x, cellHei() * 0.55, width, cellHei() * 0.3};
    return {x, cellHei() * 0.14, width, cellHei() * 0.42};
}

QRectF Framr::ffSoundCellColor() {
    const double side = cellHei() * 0.4;
    return {scrnWid() - 0.06 * scrnWid() - side, (cellHei() - side) / 2.0, side, side};
}

QRectF Framr::ffLoopCellColor(int index) {
    const double side = cellHei() * 0.26;
    const double gap = side * 0.18;
    const double blockW = 4 * side + 3 * gap;
    const double x0 = scrnWid() - 0.05 * scrnWid() - blockW;
    const double y0 = (cellHei() - (2 * side + gap)) / 2.0;
    const int col = index % 4, row = index / 4;
    return {x0 + col * (side + gap), y0 + row * (side + gap), side, side};
}

QRectF Framr::ffGlobalCellIcon() {
    const double side = cellHei() * 0.5;
    return {20.0, (cellHei() - side) / 2.0, side, side};
}

QRectF Framr::ffGlobalCellLabel() {
    const QRectF icon = ffGlobalCellIcon();
    const double x = icon.right() + 16.0;
    return {x, 0, kMenuReveal - x - 10.0, cellHei()};
}
