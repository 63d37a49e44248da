#pragma once
// The sounds list: sound folders with their sounds, each row with the
// sound's colour. A sound plays once in place through the application's
// one-shot player; the add button opens the sound screen for a new sound.
#include "screens/lists/BaseTVC.h"

class SoundsTVC : public BaseTVC {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit SoundsTVC(QObject* parent = nullptr);
    ~SoundsTVC() override;

protected:
    void fillItemRow(ListRow& row, ManagedObject* item) const override;
    bool startPlayingItem(ManagedObject* item) override;
    void stopPlayingItem() override;
    void deleteItemDependents(ManagedObject* item) override;
    ManagedObject* newItem() override { return nullptr; }
    void openItem(ManagedObject* item) override;
    QString shareKind(bool folder) const override;

private:
    bool m_listening = false;  // the application's reloader points here
};
