#pragma once
// Layout functions: every frame a screen uses, and the frames of the filmed
// export picture, computed from the screen (window) size W x H and its top
// safe-area inset. Class operations only; the screen size is process-wide
// state set by the window (main thread) whenever it is resized.
// Rectangles are (x, y, width, height) in points.
#include <QRectF>
#include <QSizeF>
#include <cstdint>

class Framr {
public:
    // Set by the window; a fresh process assumes the default window size.
    static void setScreen(double width, double height, double topSafeInset);

    // Basic measures.
    static double scrnWid();
    static double scrnHei();
    static bool isIpad();       // a wide screen: H / W < 1.4
    static bool isIphone4s();   // 1.4 < H / W < 1.6
    static double navBarHei();  // 44
    static QRectF fullScrn();
    static QRectF allSpaceBelowNav();
    static QRectF allSpaceAboveBottom();
    // Taken from the top inset by design: a notched screen needs room at the bottom too.
    static double bottomInset();
    // A rect moved by (fullScrn origin - fullScrnCircle origin): places screen
    // coordinates inside a view that has the full-screen circle's frame.
    static QRectF tffsrtfsc(const QRectF& rect);

    // Export screen. Elements are centred horizontally; the settings controls
    // lie one screen height below the visible area.
    static QRectF ffExportFileIcon();
    static QRectF ffExportFileNameLabelOfSound(bool ofSound);
    static QRectF ffExportFileSizeLabel();
    static QRectF ffExportDoneButton(bool isSend);
    static QRectF ffExportProgress(double progress);
    static QRectF ffExportResultLabel();
    static QRectF ffExportParamSegcontAtRow(int row);
    static QRectF ffExportLoopAudioVideo();
    static QRectF ffExportLoopTacts();
    static QRectF ffExportAttachSoundPhotos();
    static QRectF ffExportLoopAttachPhotos();
    static QRectF ffExportLoopSaveOrSend();
    static QRectF ffExportLoopFormat();
    static QRectF ffExportLoopSaveOrSendVideo();

    // The filmed picture. format: 0 "9:16", 1 "1:1", 2 "16:9". Its width is
    // rounded up so that its whole part is a multiple of 16 (video encoders).
    static QRectF ffExportLoopAllInstrV(int format);
    // The centred square of a picture of the given size (origin ignored).
    static QRectF ffExportTrackLogoOnAll(const QRectF& all);
    // Cell ind of n instrument cells on a picture of the given size.
    static QRectF ffExportLoopInstrVOnAll(const QSizeF& all, int ind, int of);
    // The photo square inside an instrument cell of the given size.
    static QRectF ffExportPhotoOnInstr(const QSizeF& cell);

    // Sound editor pieces the export screen shares.
    static QRectF ffSoundWave();
    static QRectF ffSoundPhotoImage();

    // Bottom panel and full-screen adjusters. The panel is a band of three
    // button columns (BPM, pause, trash/OK) above the bottom inset.
    static double heiForBottomOrTopPanel();
    static double bottomPanelHei();
    static QRectF ffBottomPanel();
    // In the panel's coordinates when onPanel, else in the screen's.
    static QRectF ffBottomButtonAtCol(int col, bool onPanel);
    static QRectF ffBpmButton();     // column 0, on the panel
    static QRectF ffPauseButton();   // column 1, on the panel
    static QRectF ffOkButton();      // column 2, on the panel
    // The circle that covers the whole screen: centred, diameter = the diagonal.
    static QRectF fullScrnCircle();
    // The full-screen circle in the bottom panel's coordinates (where the BPM adjuster lives).
    static QRectF ffBPMfullScrn();
    // The space above the bottom panel moved up out of sight, above the navigation bar.
    static QRectF aboveNav();

    // Adjuster insides, in the adjuster's own coordinates (its frame's size).
    // The inner circle never exceeds half the screen width, centred.
    static QRectF ffCircleViewOn(const QRectF& adjuster);
    // The fill of the inner circle for a fraction 0 to 1 (clamped), rising from its bottom.
    static QRectF ffIndiktViewOn(const QRectF& circle, double percent);
    // A dot on the inner circle's rim at the step's place, step 0 at the top, clockwise.
    static QRectF ffIndiktViewOn(const QRectF& circle, uint16_t tact);

    // Name-and-folder panel and its folder chooser, in screen coordinates.
    // A sound's panel puts name and folder at the top, above the waveform;
    // a loop's, track's or folder's panel centres them.
    static QRectF ffNameOfSound(bool forSound);
    static QRectF ffFolderName(bool forSound);
    // The folder icon inside the folder button (in the button's coordinates).
    static QRectF ffFolderIcon(const QRectF& folderButton, bool sound);
    static QRectF ffSoundFolderTable();
    static QRectF ffSoundFolderAddButton();
    static QRectF ffSoundFolderNameField();
    static QRectF ffSoundFolderOkOrCancelButton(bool ok);

    // Library lists and the side menu; cell frames are in the cell's coordinates.
    static double heightForUsualCell();
    static QRectF ffFolderCellTriangle();
    static QRectF ffFolderCellFolderImg();
    static QRectF ffFolderCellName();
    static QRectF ffItemCellPlayButton();
    static QRectF ffItemCellNameOrAuthor(bool author);
    static QRectF ffSoundCellColor();
    static QRectF ffLoopCellColor(int index);  // 8 tiles in two rows of four
    static QRectF ffGlobalCellIcon();
    static QRectF ffGlobalCellLabel();

private:
    static double s_width;
    static double s_height;
    static double s_topInset;
};
