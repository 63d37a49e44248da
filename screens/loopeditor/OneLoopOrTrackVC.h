#pragma once
// What the loop editor and the track editor share: the bottom panel with the
// tempo adjuster, the pause and trash/OK buttons, the bar's two buttons (menu
// or back arrow, share), the tap on the bar's title, the trash/OK cycle,
// sharing and leaving. The editors decide what an item is, what deleting
// means and what the player is told.
#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <vector>

#include "screens/kit/BpmView.h"

class OneLoopOrTrackVC : public QObject, public BpmViewDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the base of OneLoopVC and OneTrackVC")
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(bool backBtnArrow READ backBtnArrow NOTIFY backBtnArrowChanged)
    // The bar's left icon: "backarrow" when opened from another editor, "formenu" from a list.
    Q_PROPERTY(QString leftBarButton READ leftBarButton NOTIFY backBtnArrowChanged)
    Q_PROPERTY(bool paused READ paused NOTIFY pausedChanged)
    Q_PROPERTY(bool deleting READ deleting NOTIFY deletingChanged)
    Q_PROPERTY(QString pauseImage READ pauseImage NOTIFY pausedChanged)
    Q_PROPERTY(QString trashImage READ trashImage NOTIFY trashImageChanged)
    Q_PROPERTY(QColor trashTint READ trashTint NOTIFY trashImageChanged)
    // The bottom panel's colour: the background colour, or the open item's colour.
    Q_PROPERTY(QColor panelColor READ panelColor NOTIFY panelColorChanged)
    Q_PROPERTY(bool navigationBarHidden READ navigationBarHidden NOTIFY navigationBarHiddenChanged)
    Q_PROPERTY(BpmView* bpmView READ bpmView CONSTANT)
    Q_PROPERTY(double bpm READ bpm NOTIFY bpmChanged)

public:
    explicit OneLoopOrTrackVC(QObject* parent = nullptr);
    ~OneLoopOrTrackVC() override;

    QString title() const { return m_title; }
    bool backBtnArrow() const { return _backBtnArrow; }
    QString leftBarButton() const { return _backBtnArrow ? QStringLiteral("backarrow") : QStringLiteral("formenu"); }
    bool paused() const { return _paused; }
    bool deleting() const { return _deleting; }
    QString pauseImage() const { return _paused ? QStringLiteral("playButton") : QStringLiteral("pauseButton"); }
    QString trashImage() const { return m_trashImage; }
    QColor trashTint() const { return m_trashTint; }
    QColor panelColor() const { return m_panelColor; }
    bool navigationBarHidden() const { return m_navigationBarHidden; }
    BpmView* bpmView() const { return _bpmView; }
    double bpm() const { return _bpm; }
    const std::vector<int>& instrsToDelete() const { return _instrsToDelete; }

    // Opened from another editor's row: the left button is a back arrow.
    void setBackBtnArrow(bool arrow);

    Q_INVOKABLE void pausePressed();
    Q_INVOKABLE void trashOkPressed();
    // The left bar button: leave the screen.
    Q_INVOKABLE void menuButtonTapped();
    Q_INVOKABLE virtual void shareButtonTapped() = 0;
    Q_INVOKABLE virtual void navBarTapped() {}
    // The export screen closed.
    Q_INVOKABLE void removeExportVC();

    // BpmViewDelegate
    void updateBpm(float bpm) override;
    void bpmViewPressed() override;

signals:
    void titleChanged();
    void backBtnArrowChanged();
    void pausedChanged();
    void deletingChanged();
    void trashImageChanged();
    void panelColorChanged();
    void navigationBarHiddenChanged();
    void bpmChanged();
    // Open the export screen for an item ("sound", "loop", "track") growing from the share button.
    void exportRequested(const QString& kind, const QString& name, const QColor& borderColor);
    // The screen is done: pop it.
    void closeRequested();

protected:
    // Sets up the panel for the item's tempo; playback starts playing.
    void setUpBase(float bpm);
    void setTitle(const QString& title);
    void setPanelColor(const QColor& color);
    // Recomputes whether the bar is hidden (an open item, the enlarged adjuster, a panel).
    void refreshNavigationBar();
    void updateTrashImage();
    void setPausedState(bool paused);

    // What the editor does.
    virtual void setPlayerPaused(bool paused) = 0;
    virtual bool hasItems() const = 0;
    virtual bool itemViewOpen() const = 0;
    virtual void removeItemView() = 0;
    virtual void startDeletion() = 0;
    virtual void applyDelete() = 0;
    // The tempo reached the adjuster; tell the player and store it.
    virtual void tempoChanged(float bpm) = 0;
    // Leaving: stop the player, free its files, tell whoever opened the screen.
    virtual void willLeave() = 0;
    // Extra reasons for a hidden bar (the name panel, the sound panel).
    virtual bool panelHidesNavigationBar() const { return false; }
    virtual void bpmViewEnlargedChanged(bool enlarged) { Q_UNUSED(enlarged); }

    bool _backBtnArrow = false;
    float _bpm = 0;
    bool _paused = false;
    bool _deleting = false;
    bool _exportOpen = false;
    std::vector<int> _instrsToDelete;
    BpmView* _bpmView;

private:
    void trashOkInMain();

    QString m_title;
    QString m_trashImage = QStringLiteral("trashButton");
    QColor m_trashTint;
    QColor m_panelColor;
    bool m_navigationBarHidden = false;
};
