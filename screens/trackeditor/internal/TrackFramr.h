#pragma once
// Frames of the track editor, from the window size (Framr's screen). Every
// row is heiForTrackLoop high and every square is a square of that side; the
// time line is a band heiForTimesc high above the rows.
#include <QRectF>

class TrackFramr {
public:
    static double heiForTrackLoop();
    static double heiForTimesc();
    // The column of row heads: colour band with the volume, title and loop picture.
    static double leftViewWidth();
    static QRectF ffTrackLeftViewOnScreen(bool onScreen);
    static QRectF ffTrackScrollViewLVOnScreen(bool leftOnScreen);
    static QRectF ffTrackVolumeAndTitlBgForLt(int row);
    static QRectF ffTrackVolumeForLt(int row);
    static QRectF ffTrackTitleForLt(int row);
    static QRectF ffTrackAllInstrBgsForLt(int row);
    static QRectF ffTrackNewLt(int rowCount);
    // In the scrolling area's content coordinates.
    static QRectF ffTrackTimescaleSquare(int square);
    static QRectF ffTrackSquare(int row, int square);
    static QRectF ffTrackSquaresNumBtn(int squaresnum);
    static QRectF ffTrackTrashImageForLt(int row);
    static QRectF ffTrackPlayingSqIndicator(int square, int tact, int rows);
    static double contentWidth(int squaresnum) { return (squaresnum + 2) * heiForTrackLoop(); }
};
