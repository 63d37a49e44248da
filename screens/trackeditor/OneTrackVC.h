#pragma once
// The track editor: up to ten rows, each a loop with its squares (bars),
// volume and colour, against a time line of the track's squares. The track
// plays round and round while the user edits: a tap toggles a square (heard at
// the next bar), a double tap plays from that square, a triple tap sets the
// whole row to the opposite of the tapped square. Every other change makes a
// user copy of a built-in track first and leaves the track stopped.
#include <QColor>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <array>
#include <memory>
#include <vector>

#include "playback/PlayerDelegates.h"
#include "screens/loopeditor/OneLoopOrTrackVC.h"
#include "screens/kit/SquaresNumView.h"
#include "screens/kit/VolumeView.h"
#include "screens/loopeditor/LoopView.h"
#include "screens/trackeditor/TrackLoopView.h"
#include "screens/trackeditor/internal/TapCounter.h"

class Loop;
class Track;
class TrackLoop;
class Trackplayer;
class TrackplayerMainThreadDelegate;

class OneTrackVC : public OneLoopOrTrackVC,
                   public TrackplayerDelegate,
                   public TrackLoopViewDelegate,
                   public VolumeViewDelegate,
                   public SquaresNumViewDelegate {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString trackName READ trackName WRITE setTrackName NOTIFY trackChanged)
    Q_PROPERTY(bool userTrack READ userTrack NOTIFY trackChanged)
    Q_PROPERTY(int revision READ revision NOTIFY editsChanged)
    Q_PROPERTY(int rowCount READ rowCount NOTIFY editsChanged)
    Q_PROPERTY(int squaresnum READ squaresnum NOTIFY editsChanged)
    Q_PROPERTY(bool canAddRow READ canAddRow NOTIFY editsChanged)
    Q_PROPERTY(QVariantList rowsToDelete READ rowsToDelete NOTIFY editsChanged)
    Q_PROPERTY(bool leftVOnscreen READ leftVOnscreen NOTIFY leftVOnscreenChanged)
    Q_PROPERTY(int playingSq READ playingSq NOTIFY playPositionChanged)
    Q_PROPERTY(int playingTact READ playingTact NOTIFY playPositionChanged)
    // The squares-number adjuster lives as long as the screen, so that its view
    // never outlives it; squaresNumOpen says whether it is showing.
    Q_PROPERTY(SquaresNumView* sqNumView READ sqNumView CONSTANT)
    Q_PROPERTY(bool squaresNumOpen READ squaresNumOpen NOTIFY sqNumViewChanged)
    Q_PROPERTY(TrackLoopView* trackloopView READ trackloopView NOTIFY trackloopViewChanged)
    Q_PROPERTY(int openRow READ openRow NOTIFY trackloopViewChanged)
    Q_PROPERTY(double scrollX READ scrollX WRITE setScrollX NOTIFY scrollXChanged)
    Q_PROPERTY(double visibleWidth READ visibleWidth WRITE setVisibleWidth)
    Q_PROPERTY(double heiForTrackLoop READ heiForTrackLoop CONSTANT)
    Q_PROPERTY(double heiForTimesc READ heiForTimesc CONSTANT)

public:
    static constexpr int kMaxRows = 10;
    static constexpr int kMaxSquares = 128;

    explicit OneTrackVC(QObject* parent = nullptr);
    ~OneTrackVC() override;

    QString trackName() const;
    // Finds the track of that name and loads the screen on it: starts playing from square 0.
    void setTrackName(const QString& name);
    void viewDidLoad(Track* track);
    Track* track() const { return track_; }
    bool userTrack() const;

    int revision() const { return revision_; }
    int rowCount() const;
    int squaresnum() const;
    bool canAddRow() const { return track_ && rowCount() < kMaxRows; }
    QVariantList rowsToDelete() const;
    // Marked for deletion: its head and line are gone until the deletion is applied.
    Q_INVOKABLE bool isRowMarked(int row) const;
    bool leftVOnscreen() const { return leftVOnscreen_; }
    int playingSq() const { return playingSq_; }
    int playingTact() const { return playingTact_; }
    SquaresNumView* sqNumView() const { return sqNumV_.get(); }
    bool squaresNumOpen() const { return sqNumOpen_; }
    TrackLoopView* trackloopView() const { return trackloopV_.get(); }
    int openRow() const;
    double scrollX() const { return scrollX_; }
    void setScrollX(double x);
    double visibleWidth() const { return visibleWidth_; }
    void setVisibleWidth(double w) { visibleWidth_ = w; }
    static double heiForTrackLoop();
    static double heiForTimesc();
    bool isPlaying() const { return trackplayer_ != nullptr; }
    Trackplayer* trackplayer() const { return trackplayer_.get(); }

    // Row heads and squares, for the view.
    Q_INVOKABLE QString rowName(int row) const;
    Q_INVOKABLE QColor rowColor(int row) const;
    // The row's loop picture, tiles of the row's colour shifted darker.
    Q_INVOKABLE LoopView* rowLoopView(int row) const;
    Q_INVOKABLE VolumeView* rowVolumeView(int row) const;
    Q_INVOKABLE bool isSquareSelected(int row, int square) const;
    Q_INVOKABLE QColor squareColor(int row, int square) const;
    // Frames from the layout functions: the heads' column and the scrolling
    // area in the screen's space above the bottom panel, a head's parts in the
    // column, the rest in the scrolling area's content.
    Q_INVOKABLE QRectF leftViewFrame() const;
    Q_INVOKABLE QRectF scrollViewFrame() const;
    Q_INVOKABLE QRectF headFrame(int row) const;
    Q_INVOKABLE QRectF volumeFrame(int row) const;
    // An enlarged row volume covers the whole screen, in the column's coordinates.
    Q_INVOKABLE QRectF volumeEnlargedFrame() const;
    Q_INVOKABLE QRectF titleFrame(int row) const;
    Q_INVOKABLE QRectF pictureFrame(int row) const;
    Q_INVOKABLE QRectF trashFrame(int row) const;
    Q_INVOKABLE QRectF newRowFrame() const;
    Q_INVOKABLE QRectF timescaleFrame(int square) const;
    Q_INVOKABLE QRectF squareFrame(int row, int square) const;
    Q_INVOKABLE QRectF squaresNumFrame() const;
    Q_INVOKABLE QRectF markerFrame() const;
    Q_INVOKABLE double contentWidth() const;

    // The hit test of a point in the scrolling area's content coordinates:
    // false when it is in the time line band or past the last row or square.
    bool isTouchedPoint(QPointF point, int* row, int* square) const;

    // Taps on the scrolling area, in its content coordinates. tapAt counts
    // them (a single tap waits for a double, a double for a triple).
    Q_INVOKABLE void tapAt(double x, double y);
    Q_INVOKABLE void tappedOnce(double x, double y);
    Q_INVOKABLE void tappedTwice(double x, double y);
    Q_INVOKABLE void tappedTrice(double x, double y);
    TapCounter* tapCounter() { return &taps_; }

    Q_INVOKABLE void trackLoopPressed(int row);
    Q_INVOKABLE void newLtPressed();
    Q_INVOKABLE void trackSquaresPressed();
    Q_INVOKABLE void trashButtonsPressed(int row);
    Q_INVOKABLE void doubleTouch();
    Q_INVOKABLE void navBarTapped() override;
    Q_INVOKABLE void shareButtonTapped() override;
    Q_INVOKABLE void applyName(const QString& name, const QString& folder);
    // Play/pause: with a row open it plays or stops the row's preview; with
    // the track stopped it plays from square 0. Ignored while deleting.
    Q_INVOKABLE void pausePressed();
    // Escape: closes what is open on top (colour chooser, squares number, an
    // enlarged adjuster, the row, deleting); false when nothing was, so the
    // view goes back.
    Q_INVOKABLE bool escapePressed();
    // The loop editor opened on a row closed with this loop (maybe a user copy).
    void loopChanged(Loop* loop);
    Q_INVOKABLE void loopEditorClosed(const QString& loopName);

    void startTrackFromSquare(uint16_t square);
    void stopTrackForChanges();
    void copyTrackIfPreloadedForEditAndUpdateDate();
    void removeTrackloopView();

    // Track player reports (main thread, through the bridge).
    void animatePlayingSquare(uint16_t square) override;
    void animatePlayingTact(uint16_t step) override;
    void trackFinishd() override;

    // Row view.
    void somethingWillBeChanged() override { copyTrackIfPreloadedForEditAndUpdateDate(); }
    void loopWasChanged() override;
    void openLoop(Loop* loop) override;
    void setPauseButtonToPaused(bool paused) override;
    void animateTactOnBpmView(uint16_t tact) override { _bpmView->updateIndicatorViewForTact(tact); }
    float trackBpm() const override { return _bpm; }

    // Adjusters.
    void updateVolume(VolumeView* view) override;
    void volumeViewPressed(VolumeView* view) override;
    void updateSquaresNum(SquaresNumView* view) override;
    void squaresNumViewPressed(SquaresNumView* view) override;

signals:
    void trackChanged();
    void editsChanged();
    void leftVOnscreenChanged();
    void playPositionChanged();
    void sqNumViewChanged();
    void trackloopViewChanged();
    void scrollXChanged();
    void volumeViewRaised(int row);
    // Requests the view carries out.
    void openLoopRequested(const QString& loopName);
    void namePanelRequested(const QString& name, const QString& folder);

protected:
    // The shared panel's questions and hooks.
    void setPlayerPaused(bool paused) override;
    bool hasItems() const override { return rowCount() > 0; }
    bool itemViewOpen() const override { return trackloopV_ != nullptr; }
    void removeItemView() override { removeTrackloopView(); }
    void startDeletion() override;
    void applyDelete() override;
    void tempoChanged(float bpm) override;
    void willLeave() override;
    bool panelHidesNavigationBar() const override;

private:
    void touched();
    void selectOrDeselectSquare(int square, int row);
    void selectOrDeselectWholeLoopTrack(int row, int square);
    void sendSquaresOfRow(int row);
    void setPaused(bool paused);
    void dropPlayer();
    TrackLoop* rowAt(int row) const;
    void setupRowHeads();
    void closeSquaresNum();

    Track* track_ = nullptr;
    bool leftVOnscreen_ = true;
    int revision_ = 0;
    uint16_t playingSq_ = 0;
    uint16_t playingTact_ = 0;
    double scrollX_ = 0;
    double visibleWidth_ = 0;
    std::array<std::unique_ptr<VolumeView>, kMaxRows> ltrackVols_;
    std::array<std::unique_ptr<LoopView>, kMaxRows> ltrackInstrBgs_;
    std::unique_ptr<SquaresNumView> sqNumV_;
    bool sqNumOpen_ = false;
    std::unique_ptr<TrackLoopView> trackloopV_;
    TapCounter taps_;
    std::shared_ptr<Trackplayer> trackplayer_;
    std::unique_ptr<TrackplayerMainThreadDelegate> bridge_;
};
