#pragma once
// One row of a track opened over the editor: the row's loop (name and
// picture), its colour, the loop picker ("All loops", then the loop folders;
// the loops of the chosen folder), and a one-pass preview of the loop at the
// track's tempo. Changes go through the editor (its delegate), which makes
// the user copy of a built-in track first.
#include <QColor>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <vector>

#include "playback/PlayerDelegates.h"
#include "screens/loopeditor/LoopView.h"
#include "screens/soundeditor/SoundColorView.h"

class Loop;
class Loopplayer;
class LoopplayerMainThreadDelegate;
class TrackLoop;

class TrackLoopViewDelegate {
public:
    virtual ~TrackLoopViewDelegate() = default;
    virtual void somethingWillBeChanged() = 0;
    virtual void loopWasChanged() = 0;
    virtual void openLoop(Loop* loop) = 0;
    virtual void setPauseButtonToPaused(bool paused) = 0;
    virtual void animateTactOnBpmView(uint16_t tact) = 0;
    virtual float trackBpm() const = 0;
};

class TrackLoopView : public QObject, public LoopplayerDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("opened by the track editor")
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(int colorNum READ colorNum NOTIFY changed)
    Q_PROPERTY(QColor color READ color NOTIFY changed)
    Q_PROPERTY(QColor buttonColor READ buttonColor NOTIFY changed)
    Q_PROPERTY(LoopView* loopView READ loopView CONSTANT)
    Q_PROPERTY(SoundColorView* soundColorV READ soundColorV NOTIFY soundColorVChanged)
    Q_PROPERTY(QStringList folders READ folders NOTIFY pickerChanged)
    Q_PROPERTY(QStringList loops READ loops NOTIFY pickerChanged)
    Q_PROPERTY(int folderRow READ folderRow NOTIFY pickerChanged)
    Q_PROPERTY(int loopRow READ loopRow NOTIFY pickerChanged)
    Q_PROPERTY(bool previewing READ previewing NOTIFY previewingChanged)

public:
    TrackLoopView(TrackLoop* trackloop, TrackLoopViewDelegate* delegate, QObject* parent = nullptr);
    ~TrackLoopView() override;

    TrackLoop* trackloop() const { return trackloop_; }
    // After the editor switched to a user copy of the track: the row at the same place.
    void setTrackloop(TrackLoop* trackloop);
    // Closed: the editor no longer hears from it.
    void dropDelegate() { delegate_ = nullptr; }

    QString title() const;
    int colorNum() const { return colorNum_; }
    QColor color() const;
    QColor buttonColor() const;
    // The loop's picture; tiles whose sound has the row's colour number are
    // shifted darker so they stay visible on it, and shrink while the preview
    // sounds them.
    LoopView* loopView() const { return loopV_; }
    // The open colour chooser, or none.
    SoundColorView* soundColorV() const { return soundColorV_; }
    QStringList folders() const;
    QStringList loops() const;
    int folderRow() const { return folderRow_; }
    int loopRow() const { return loopRow_; }
    bool previewing() const { return loopplayer_ != nullptr; }

    Q_INVOKABLE void selectFolder(int row);
    // A loop picked on the right wheel; an out-of-range row changes nothing.
    Q_INVOKABLE void selectLoop(int row);
    // Opens the colour chooser at the row's colour; it closes itself after a pick.
    Q_INVOKABLE SoundColorView* colorPressed();
    // Closes the open colour chooser without a pick.
    Q_INVOKABLE void removeSoundColorView();
    Q_INVOKABLE void colorPicked(int colorNum);
    Q_INVOKABLE void playPausePressed();
    Q_INVOKABLE void openLoopPressed();

    void updateTrackLoopWithLoop(Loop* loop);        // only when it differs
    void reallyUpdateTrackLoopWithLoop(Loop* loop);  // always
    void updateBpmInLoopplayer(float bpm);
    void stopPreview();
    // The picker's contents again (a loop may have been copied or renamed).
    void addPickerWithUpdatedItems();

    // Preview reports, on the main thread through the bridge.
    void animateTact(uint16_t step) override;
    void animateStartPlaying(int slot) override;
    void animateStopPlaying(int slot) override;
    void loopEndRepeating() override;

signals:
    void changed();
    void pickerChanged();
    void previewingChanged();
    void soundColorVChanged();

private:
    void loadFolderItems();
    void positionPickerOnLoop();
    void refreshLoopPicture();

    TrackLoop* trackloop_;
    TrackLoopViewDelegate* delegate_;
    int colorNum_ = 0;
    std::vector<Loop*> folderLoops_;  // right wheel
    int folderRow_ = 0;
    int loopRow_ = 0;
    std::shared_ptr<Loopplayer> loopplayer_;
    std::unique_ptr<LoopplayerMainThreadDelegate> bridge_;
    LoopView* loopV_;  // a child
    QPointer<SoundColorView> soundColorV_;
};
