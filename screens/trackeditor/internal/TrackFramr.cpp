#include "screens/trackeditor/internal/TrackFramr.h"

#include <algorithm>

#include "export/Framr.h"

namespace {
constexpr double kSquareGap = 2;  // between square views, so the grid reads as squares
}

double TrackFramr::heiForTrackLoop() { return std::clamp(Framr::scrnWid() / 6.5, 48.0, 72.0); }
double TrackFramr::heiForTimesc() { return 30; }
double TrackFramr::leftViewWidth() { return std::min(Framr::scrnWid() * 0.42, 260.0); }

QRectF TrackFramr::ffTrackLeftViewOnScreen(bool onScreen) {
    QRectF below = Framr::allSpaceAboveBottom();
    const double w = leftViewWidth();
    return {onScreen ? 0.0 : -w, below.y(), w, below.height()};
}

QRectF TrackFramr::ffTrackScrollViewLVOnScreen(bool leftOnScreen) {
    QRectF below = Framr::allSpaceAboveBottom();
    const double x = leftOnScreen ? leftViewWidth() : 0.0;
    return {x, below.y(), Framr::scrnWid() - x, below.height()};
}

QRectF TrackFramr::ffTrackVolumeAndTitlBgForLt(int row) {
    return {0, heiForTimesc() + row * heiForTrackLoop(), leftViewWidth(), heiForTrackLoop() - kSquareGap};
}

QRectF TrackFramr::ffTrackVolumeForLt(int row) {
    QRectF bg = ffTrackVolumeAndTitlBgForLt(row);
    const double side = bg.height() - 8;
    return {4, bg.y() + 4, side, side};
}

QRectF TrackFramr::ffTrackTitleForLt(int row) {
    QRectF bg = ffTrackVolumeAndTitlBgForLt(row);
    QRectF vol = ffTrackVolumeForLt(row);
    const double x = vol.right() + 6;
    return {x, bg.y() + 2, ffTrackAllInstrBgsForLt(row).x() - x - 4, bg.height() - 4};
}

QRectF TrackFramr::ffTrackAllInstrBgsForLt(int row) {
    QRectF bg = ffTrackVolumeAndTitlBgForLt(row);
    const double side = bg.height() - 8;
    return {bg.width() - side - 4, bg.y() + 4, side, side};
}

QRectF TrackFramr::ffTrackNewLt(int rowCount) {
    const double h = heiForTrackLoop();
    return {(leftViewWidth() - h) / 2, heiForTimesc() + rowCount * h, h, h};
}

QRectF TrackFramr::ffTrackTimescaleSquare(int square) {
    return {square * heiForTrackLoop(), 0, heiForTrackLoop() - kSquareGap, heiForTimesc() - kSquareGap};
}

QRectF TrackFramr::ffTrackSquare(int row, int square) {
    const double h = heiForTrackLoop();
    return {square * h, heiForTimesc() + row * h, h - kSquareGap, h - kSquareGap};
}

QRectF TrackFramr::ffTrackSquaresNumBtn(int squaresnum) {
    const double h = heiForTrackLoop();
    return {squaresnum * h + h * 0.1, h * 0.1, h * 0.8, h * 0.8};
}

// Where the volume was: the volume is hidden while deleting.
QRectF TrackFramr::ffTrackTrashImageForLt(int row) { return ffTrackVolumeForLt(row); }

QRectF TrackFramr::ffTrackPlayingSqIndicator(int square, int tact, int rows) {
    const double h = heiForTrackLoop();
    const double w = h / 16.0;
    return {square * h + tact * w, heiForTimesc(), w, std::max(rows, 1) * h};
}
