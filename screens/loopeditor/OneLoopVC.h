#pragma once
// The loop editor: up to eight instrument tiles in two columns and four rows,
// played round and round while the user edits. Every edit is saved at once
// and reaches the running player on its next pass. A built-in loop is copied
// into the user's loops on its first edit and the screen carries on with the
// copy, still playing.
#include <QList>
#include <QQmlListProperty>
#include <QRectF>
#include <QString>
#include <QTimer>
#include <array>
#include <map>
#include <memory>

#include "playback/MainThreadDelegates.h"
#include "playback/PlayerDelegates.h"
#include "screens/lists/panels/LoopOrFolderEditView.h"
#include "screens/lists/panels/NameAndFolderDelegate.h"
#include "screens/loopeditor/InstrumentView.h"
#include "screens/loopeditor/OneLoopOrTrackVC.h"
#include "screens/loopeditor/internal/LoopTile.h"

class AudioFileLoaderOperation;
class Instrument;
class Loop;
class Loopplayer;

// The track editor opens loops from its rows and hears back when they close.
class OneLoopVCDelegate {
public:
    virtual ~OneLoopVCDelegate() = default;
    virtual void loopChanged(Loop* loop) = 0;
};

class OneLoopVC : public OneLoopOrTrackVC,
                  public LoopplayerDelegate,
                  public VolumeViewDelegate,
                  public InstrumentViewDelegate,
                  public NameAndFolderDelegate {
    Q_OBJECT
    QML_ELEMENT
    // Setting it opens that loop and starts playing it.
    Q_PROPERTY(QString loopName READ loopName WRITE setLoopName NOTIFY loopChanged)
    Q_PROPERTY(bool loopPreloaded READ loopPreloaded NOTIFY loopChanged)
    Q_PROPERTY(QQmlListProperty<LoopTile> tiles READ tilesList CONSTANT)
    Q_PROPERTY(int instrumentCount READ instrumentCount NOTIFY tilesChanged)
    // The add tile's cell, -1 with eight instruments.
    Q_PROPERTY(int addTileCell READ addTileCell NOTIFY tilesChanged)
    // The add tile is shrunk away while the choice buttons show or tiles are being deleted.
    Q_PROPERTY(bool addTileShown READ addTileShown NOTIFY tilesChanged)
    Q_PROPERTY(bool choiceButtonsShown READ choiceButtonsShown NOTIFY tilesChanged)
    // 0 plain, 1 volume, 2 photos.
    Q_PROPERTY(int displayMode READ displayMode NOTIFY displayModeChanged)
    // The tiles move up out of the way while the tempo adjuster is enlarged.
    Q_PROPERTY(bool tilesAboveNav READ tilesAboveNav NOTIFY tilesChanged)
    Q_PROPERTY(InstrumentView* instrumentView READ instrumentView NOTIFY instrumentViewChanged)
    // The sound editor panel is open (over a backdrop); the sound it edits, empty for a new one.
    Q_PROPERTY(bool soundPanelOpen READ soundPanelOpen NOTIFY soundPanelChanged)
    Q_PROPERTY(QString soundPanelSoundName READ soundPanelSoundName NOTIFY soundPanelChanged)
    // Whether the sound editor panel can be shown (its module is part of the program).
    Q_PROPERTY(bool soundPanelAvailable READ soundPanelAvailable WRITE setSoundPanelAvailable NOTIFY soundPanelChanged)
    Q_PROPERTY(bool nameFolderPanelOpen READ nameFolderPanelOpen NOTIFY nameFolderPanelChanged)
    // The name-and-folder panel while it is open.
    Q_PROPERTY(LoopOrFolderEditView* loopEditV READ loopEditV NOTIFY nameFolderPanelChanged)
    Q_PROPERTY(QString loopFolderName READ loopFolderName NOTIFY loopChanged)

public:
    enum DisplayMode { Plain = 0, Volume = 1, Photos = 2 };
    static constexpr int kMaxInstruments = 8;
    static constexpr int kChoiceButtonsMs = 2000;

    explicit OneLoopVC(QObject* parent = nullptr);
    ~OneLoopVC() override;

    // Opened from a track editor's row: back arrow, and the row hears loopChanged on leaving.
    void initWithArrowAndDelegat(OneLoopVCDelegate* delegate);
    // Loads the screen for a loop and starts playing it.
    void openLoop(Loop* loop);

    QString loopName() const;
    void setLoopName(const QString& name);
    bool loopPreloaded() const;
    QString loopFolderName() const;
    QList<LoopTile*> tiles() const { return m_tileObjects; }
    QQmlListProperty<LoopTile> tilesList() { return {this, &m_tileObjects}; }
    int instrumentCount() const;
    int addTileCell() const { return m_addTileCell; }
    bool addTileShown() const { return m_addTileShown; }
    bool choiceButtonsShown() const { return m_choiceButtonsShown; }
    int displayMode() const { return m_displayMode; }
    bool tilesAboveNav() const { return m_tilesAboveNav; }
    InstrumentView* instrumentView() const { return _instrV.get(); }
    bool soundPanelOpen() const { return m_soundPanelOpen; }
    QString soundPanelSoundName() const { return m_soundPanelSoundName; }
    bool soundPanelAvailable() const { return m_soundPanelAvailable; }
    void setSoundPanelAvailable(bool available);
    bool nameFolderPanelOpen() const { return _loopEditV != nullptr; }
    LoopOrFolderEditView* loopEditV() const { return _loopEditV.get(); }

    Loop* loop() const { return m_loop; }
    Loopplayer* loopplayer() const { return _loopplayer.get(); }
    // The tile in a slot (none when the slot is empty).
    LoopTile* tileAtSlot(int slot) const { return _instrButtons[static_cast<size_t>(slot)]; }
    int slotOfTile(int tileIndex) const;
    bool choiceTimerActive() const { return addFromDeleterTimer.isActive(); }

    // Where the tile (or add tile) of a grid cell goes, in the screen's
    // coordinates; the grid leaves room for the bar above and the bottom panel.
    Q_INVOKABLE QRectF tileFrame(int cell) const;
    // A choice button's spot inside the add tile's cell (0: list, 1: microphone).
    Q_INVOKABLE QRectF choiceButtonFrame(int type) const;

    // A tile was tapped (its index in `tiles`).
    Q_INVOKABLE void instrPressed(int tileIndex);
    Q_INVOKABLE void newInstrumentPressed();
    // 0: from the list, 1: from the microphone.
    Q_INVOKABLE void typeOfNewInstrButtonPressed(int type);
    Q_INVOKABLE QString imageNameForTypeOfNewInstrButton(int type) const;
    Q_INVOKABLE void hideAndThenDeleteAllTypesOfNewInstrButtons();
    // The two-finger tap: plain -> volume -> photos -> plain.
    Q_INVOKABLE void doubleTouch();
    Q_INVOKABLE void removeInstrView();
    void shareButtonTapped() override;
    void navBarTapped() override;
    Q_INVOKABLE void closeNameFolderPanel() { removEditView(); }
    // NameAndFolderDelegate
    void applyName(const QString& name, const QString& folderName) override;
    void removEditView() override;
    // The sound editor panel's results.
    Q_INVOKABLE void micPressed();
    Q_INVOKABLE void soundWasAddedOrEdited(const QString& soundName);
    Q_INVOKABLE void soundRecordingWasCancelled();
    Q_INVOKABLE void removeSoundView();
    // Adds a "Kick" instrument with no steps and opens it; from the
    // microphone, the sound recorder opens over it too.
    void addNewInstrumentFromMic(bool fromMic);

    // LoopplayerDelegate (arrives on the main thread through the bridge).
    void animateTact(uint16_t step) override;
    void animateStartPlaying(int slot) override;
    void animateStopPlaying(int slot) override;
    void loopEndRepeating() override {}

    // VolumeViewDelegate (the tiles' volume views in volume mode).
    void updateVolume(VolumeView* view) override;
    void volumeViewPressed(VolumeView* view) override;

    // InstrumentViewDelegate
    void tactsWasChanged() override;
    void somethingWillBeChanged() override { copyLoopIfPreloadedForEditAndUpdateDate(); }
    void soundWasChanged(Instrument* instrument) override;
    void updateColorOfPanelAndInstrB(Instrument* instrument) override;
    void volumWasChanged() override;
    void editInstrPressed() override;
    void shareSound(Sound* sound) override;

signals:
    void loopChanged();
    void tilesChanged();
    void displayModeChanged();
    void instrumentViewChanged();
    void soundPanelChanged();
    void nameFolderPanelChanged();

protected:
    void setPlayerPaused(bool paused) override;
    bool hasItems() const override { return instrumentCount() > 0; }
    bool itemViewOpen() const override { return _instrV != nullptr; }
    void removeItemView() override { removeInstrView(); }
    void startDeletion() override;
    void applyDelete() override;
    void tempoChanged(float bpm) override;
    void willLeave() override;
    bool panelHidesNavigationBar() const override { return _loopEditV || m_soundPanelOpen || _exportOpen; }
    void bpmViewEnlargedChanged(bool enlarged) override;

private:
    void copyLoopIfPreloadedForEditAndUpdateDate();
    void someInstrumentsWasDeletedSoChangeVars(const std::map<int, int>& newToOld);
    void fixDeleteAllFuckinSubviews();
    void openInstrumentAtSlot(int slot);
    void refreshTile(int slot);
    void refreshAllTiles();
    void setAddTile(int cell, bool shown);
    void stopPlayer();
    Instrument* instrumentAt(int slot) const;
    LoopTile* freeTile() const;
    // Shows `tile` as the slot's instrument, unmarked and silent.
    void placeTile(LoopTile* tile, int slot);

    Loop* m_loop = nullptr;
    OneLoopVCDelegate* delegate = nullptr;
    std::shared_ptr<Loopplayer> _loopplayer;
    std::unique_ptr<LoopplayerMainThreadDelegate> m_bridge;
    std::array<LoopTile*, kMaxInstruments> _instrButtons{};
    QList<LoopTile*> m_tileObjects;
    std::unique_ptr<InstrumentView> _instrV;
    std::unique_ptr<InstrumentView> m_closedInstrV;  // kept until the view has let go of it
    std::shared_ptr<AudioFileLoaderOperation> _tempFile;
    QTimer addFromDeleterTimer;
    int m_addTileCell = -1;
    bool m_addTileShown = true;
    bool m_choiceButtonsShown = false;
    int m_displayMode = Plain;
    bool m_tilesAboveNav = false;
    bool m_soundPanelOpen = false;
    QString m_soundPanelSoundName;
    bool m_soundPanelAvailable = false;
    std::unique_ptr<LoopOrFolderEditView> _loopEditV;
    std::unique_ptr<LoopOrFolderEditView> m_closedLoopEditV;  // kept until the view has let go of it
};
