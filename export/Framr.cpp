#include "export/Framr.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kNavBarHei = 44.0;
constexpr double kSixteenNinths = 1.7777777777777777;
constexpr int kVideoWidthMultiple = 16;

// The BPM adjuster (and every bottom button) is this fraction of the screen
// height, within these bounds: about 63 points on a 390 x 844 phone, 60 on a
// 1280 x 800 desktop window, 48 on a 320 x 568 one.
constexpr double kBottomButtonHeightFraction = 0.075;
constexpr double kBottomButtonMin = 48.0;
constexpr double kBottomButtonMax = 64.0;
// The three bottom columns spread over at most this width, centred, so a wide
// window does not scatter them to its edges.
constexpr double kBottomRowMaxWidth = 480.0;
constexpr int kBottomColumns = 3;

// The adjuster's inner circle, as a fraction of the adjuster's side; the BPM
// step dot as a fraction of the inner circle's side.
constexpr double kInnerCircleFraction = 0.84;
constexpr double kMaxInnerCircleOfScreenWidth = 0.5;
constexpr double kStepDotFraction = 0.16;
constexpr int kStepsPerBar = 16;

double centredX(double width) { return (Framr::scrnWid() - width) / 2.0; }

double bottomButtonSide() {
    return std::clamp(Framr::scrnHei() * kBottomButtonHeightFraction, kBottomButtonMin, kBottomButtonMax);
}

}  // namespace

double Framr::s_width = 390.0;
double Framr::s_height = 844.0;
double Framr::s_topInset = 0.0;

void Framr::setScreen(double width, double height, double topSafeInset) {
    s_width = width;
    s_height = height;
    s_topInset = topSafeInset;
}

double Framr::scrnWid() { return s_width; }
double Framr::scrnHei() { return s_height; }
bool Framr::isIpad() { return s_height / s_width < 1.4; }
bool Framr::isIphone4s() {
    const double ratio = s_height / s_width;
    return ratio > 1.4 && ratio < 1.6;
}
double Framr::navBarHei() { return kNavBarHei; }
QRectF Framr::fullScrn() { return {0, 0, s_width, s_height}; }
QRectF Framr::allSpaceBelowNav() { return {0, kNavBarHei, s_width, s_height - kNavBarHei}; }
QRectF Framr::allSpaceAboveBottom() {
    return {0, 0, s_width, s_height - ffBpmButton().height() - kNavBarHei - bottomInset()};
}
double Framr::bottomInset() { return s_topInset > 0 ? s_topInset + 20.0 : s_topInset; }

QRectF Framr::tffsrtfsc(const QRectF& rect) {
    return rect.translated(fullScrn().topLeft() - fullScrnCircle().topLeft());
}

// ---- Export screen

QRectF Framr::ffExportFileIcon() {
    const double side = 0.26 * s_height;
    return {centredX(side), 0.2 * s_height, side, side};
}

QRectF Framr::ffExportFileNameLabelOfSound(bool ofSound) {
    const double width = 0.6 * s_width;
    return {centredX(width), (ofSound ? 0.46 : 0.1) * s_height, width, 0.08 * s_height};
}

QRectF Framr::ffExportFileSizeLabel() {
    const double width = 0.6 * s_width;
    return {centredX(width), 0.52 * s_height, width, 0.05 * s_height};
}

QRectF Framr::ffExportDoneButton(bool isSend) {
    const double side = (isSend ? 0.2 : 0.15) * s_height;
    const double y = isSend ? 0.7 * s_height : 0.75 * s_height + s_height;
    return {centredX(side), y, side, side};
}

QRectF Framr::ffExportProgress(double progress) {
    const double full = 0.7 * s_width;
    // The bar grows to the right from the full bar's left edge.
    return {centredX(full), 0.78 * s_height, std::clamp(progress, 0.0, 1.0) * full, 0.04 * s_height};
}

QRectF Framr::ffExportResultLabel() {
    const double width = 0.7 * s_width;
    const double height = 0.08 * s_height;
    return {centredX(width), (s_height - height) / 2.0, width, height};
}

QRectF Framr::ffExportParamSegcontAtRow(int row) {
    const double width = 0.7 * s_width;
    const double height = 0.09 * s_height;
    return {centredX(width), s_height + 0.12 * s_height + row * height * 1.4, width, height};
}

QRectF Framr::ffExportLoopAudioVideo() { return ffExportParamSegcontAtRow(0); }
QRectF Framr::ffExportLoopTacts() { return ffExportParamSegcontAtRow(1); }
QRectF Framr::ffExportAttachSoundPhotos() { return ffExportParamSegcontAtRow(1); }
QRectF Framr::ffExportLoopAttachPhotos() { return ffExportParamSegcontAtRow(2); }
QRectF Framr::ffExportLoopSaveOrSend() { return ffExportParamSegcontAtRow(3); }
QRectF Framr::ffExportLoopFormat() { return ffExportParamSegcontAtRow(3); }
QRectF Framr::ffExportLoopSaveOrSendVideo() { return ffExportParamSegcontAtRow(4); }

// ---- The filmed picture

QRectF Framr::ffExportLoopAllInstrV(int format) {
    const QRectF nameLabel = ffExportFileNameLabelOfSound(false);
    const double top = nameLabel.y() + nameLabel.height();
    const double bottom = ffExportDoneButton(true).y();
    const double gap = bottom - top;
    const double middle = top + gap / 2.0;

    double width = 0, height = 0, y = 0;
    switch (format) {
    case 0:
        height = 0.8 * gap;
        width = height / kSixteenNinths;
        y = top + 0.1 * gap;
        break;
    case 1: {
        const double side = 0.8 * gap >= s_width ? s_width : 0.8 * gap;
        width = height = side;
        y = middle - side / 2.0;
        break;
    }
    default:  // 2, the only other segment
        width = s_width;
        height = std::min(s_width / kSixteenNinths, 0.8 * gap);
        y = middle - height / 2.0;
        break;
    }

    const int whole = static_cast<int>(width);
    if (whole % kVideoWidthMultiple != 0) {
        width = (whole / kVideoWidthMultiple) * kVideoWidthMultiple + kVideoWidthMultiple;
        // The height follows the new width; the gap limit is deliberately not applied again.
        if (format == 0) height = width * kSixteenNinths;
        else if (format == 1) height = width;
        else height = width / kSixteenNinths;
    }
    return {(s_width - width) / 2.0, y, width, height};
}

QRectF Framr::ffExportTrackLogoOnAll(const QRectF& all) {
    const double w = all.width(), h = all.height();
    if (w < h) return {0, (h - w) / 2.0, w, w};
    if (w > h) return {(w - h) / 2.0, 0, h, h};
    return {0, 0, w, w};
}

QRectF Framr::ffExportLoopInstrVOnAll(const QSizeF& all, int ind, int n) {
    if (n <= 0) return {};
    const double w = all.width(), h = all.height();
    int columns = 1, rows = n;
    if (w > h) {  // landscape
        if (n <= 2) { columns = n; rows = 1; }
        else if (n <= 4) { columns = 2; rows = 2; }
        else if (n <= 6) { columns = 3; rows = 2; }
        else { columns = 4; rows = 2; }
    } else {  // square, or portrait, which stacks three or four in one column
        const bool square = w == h;
        if (n <= 2 || (!square && n <= 4)) { columns = 1; rows = n; }
        else if (n <= 4) { columns = 2; rows = 2; }
        else if (n <= 6) { columns = 2; rows = 3; }
        else { columns = 2; rows = 4; }
    }
    const double cellW = w / columns, cellH = h / rows;
    return {(ind % columns) * cellW, (ind / columns) * cellH, cellW, cellH};
}

QRectF Framr::ffExportPhotoOnInstr(const QSizeF& cell) {
    const double side = 0.7 * std::min(cell.width(), cell.height());
    return {(cell.width() - side) / 2.0, (cell.height() - side) / 2.0, side, side};
}

// ---- Sound editor

QRectF Framr::ffSoundWave() {
    return {0.1 * s_width, 0.16 * s_height, 0.8 * s_width, std::trunc(0.24 * s_height)};
}

QRectF Framr::ffSoundPhotoImage() {
    const double side = 0.6 * s_width < 320.0 ? 0.6 * s_width : 320.0;
    return {(s_width - side) / 2.0, (s_height - side) * 0.3, side, side};
}

// ---- Bottom panel and full-screen adjusters

// The band holds a button with half a navigation bar above and below it.
double Framr::heiForBottomOrTopPanel() { return bottomButtonSide() + kNavBarHei; }
double Framr::bottomPanelHei() { return heiForBottomOrTopPanel() + bottomInset(); }
QRectF Framr::ffBottomPanel() { return {0, s_height - bottomPanelHei(), s_width, bottomPanelHei()}; }

QRectF Framr::ffBottomButtonAtCol(int col, bool onPanel) {
    const double side = bottomButtonSide();
    const double rowWidth = std::min(s_width, kBottomRowMaxWidth);
    const double centre = (s_width - rowWidth) / 2.0 + rowWidth * (col + 0.5) / kBottomColumns;
    const double y = kNavBarHei / 2.0 + (onPanel ? 0.0 : ffBottomPanel().y());
    return {centre - side / 2.0, y, side, side};
}

QRectF Framr::ffBpmButton() { return ffBottomButtonAtCol(0, true); }
QRectF Framr::ffPauseButton() { return ffBottomButtonAtCol(1, true); }
QRectF Framr::ffOkButton() { return ffBottomButtonAtCol(2, true); }

QRectF Framr::fullScrnCircle() {
    const double d = std::hypot(s_width, s_height);
    return {(s_width - d) / 2.0, (s_height - d) / 2.0, d, d};
}

QRectF Framr::ffBPMfullScrn() { return fullScrnCircle().translated(0, -ffBottomPanel().y()); }

QRectF Framr::aboveNav() {
    const QRectF space = allSpaceAboveBottom();
    return space.translated(0, -s_height);
}

// ---- Adjuster insides

QRectF Framr::ffCircleViewOn(const QRectF& adjuster) {
    const double side = std::min(kInnerCircleFraction * std::min(adjuster.width(), adjuster.height()),
                                 kMaxInnerCircleOfScreenWidth * s_width);
    return {(adjuster.width() - side) / 2.0, (adjuster.height() - side) / 2.0, side, side};
}

QRectF Framr::ffIndiktViewOn(const QRectF& circle, double percent) {
    const double p = std::clamp(percent, 0.0, 1.0);
    const double height = circle.height() * p;
    return {circle.x(), circle.y() + circle.height() - height, circle.width(), height};
}

QRectF Framr::ffIndiktViewOn(const QRectF& circle, uint16_t tact) {
    const double dot = kStepDotFraction * circle.width();
    const double radius = (circle.width() - dot) / 2.0;
    const double angle = 2.0 * M_PI * (tact % kStepsPerBar) / kStepsPerBar;
    const QPointF centre = circle.center();
    return {centre.x() + radius * std::sin(angle) - dot / 2.0, centre.y() - radius * std::cos(angle) - dot / 2.0,
            dot, dot};
}
