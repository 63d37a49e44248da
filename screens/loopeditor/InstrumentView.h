#pragma once
// One instrument full screen: a top panel (the sound's name, photo, volume,
// edit and share buttons), sixteen round step buttons in four rows, and the
// sound picker. Every change is saved at once and told to the delegate, which
// tells the player.
#include <QColor>
#include <QString>
#include <cstdint>

#include "screens/kit/VolumeView.h"
#include "screens/loopeditor/WithPickerView.h"

class Instrument;
class Sound;

class InstrumentViewDelegate {
public:
    virtual ~InstrumentViewDelegate() = default;
    virtual void tactsWasChanged() = 0;
    // Runs before every change: a built-in loop becomes a user copy first.
    virtual void somethingWillBeChanged() = 0;
    virtual void soundWasChanged(Instrument* instrument) = 0;
    virtual void updateColorOfPanelAndInstrB(Instrument* instrument) = 0;
    virtual void volumWasChanged() = 0;
    virtual void editInstrPressed() = 0;
    virtual void shareSound(Sound* sound) = 0;
};

class InstrumentView : public WithPickerView, public VolumeViewDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("opened by the loop editor")
    Q_PROPERTY(QString title READ title NOTIFY instrumentChanged)
    Q_PROPERTY(QColor color READ color NOTIFY instrumentChanged)
    Q_PROPERTY(QString photoSource READ photoSource NOTIFY instrumentChanged)
    Q_PROPERTY(int tacts READ tacts NOTIFY tactsChanged)
    // The step button shown smaller: the step playing now (-1 before the first).
    Q_PROPERTY(int playingTact READ playingTact NOTIFY playingTactChanged)
    Q_PROPERTY(VolumeView* volumeV READ volumeV CONSTANT)

public:
    static constexpr int kSteps = 16;

    InstrumentView(Instrument* instrument, InstrumentViewDelegate* delegate, QObject* parent = nullptr);

    Instrument* instrument() const { return m_instrument; }
    // The loop became a copy: show the instrument at the same place in it.
    void setInstrument(Instrument* instrument);
    QString title() const;
    QColor color() const;
    QString photoSource() const;
    int tacts() const;
    int playingTact() const { return m_playingTact; }
    VolumeView* volumeV() const { return m_volumeV; }

    // Off: the sound's colour; on: a very dark shade of it.
    Q_INVOKABLE QColor colorForTact(int step) const;
    // A step button: toggles bit 15 - step of the mask; other numbers are ignored.
    Q_INVOKABLE void tactPressed(int step);
    Q_INVOKABLE void editButtonPressed();
    Q_INVOKABLE void shareButtonPressed();
    // The player reached step t.
    void animateTact(int step);
    // Sets the sound when it differs (saved, told), then refreshes the panel.
    void updateInstrumentWithSound(Sound* sound);

    // VolumeViewDelegate
    void updateVolume(VolumeView* view) override;
    void volumeViewPressed(VolumeView* view) override { Q_UNUSED(view); }

signals:
    void instrumentChanged();
    void tactsChanged();
    void playingTactChanged();

protected:
    QString allItemsTitle() const override { return QStringLiteral("All sounds"); }
    ManagedObject* currentItem() const override;
    void itemChosen(ManagedObject* item) override;

private:
    void setupInstrumentView();

    Instrument* m_instrument;
    InstrumentViewDelegate* m_delegate;
    VolumeView* m_volumeV;
    int m_playingTact = -1;
};
