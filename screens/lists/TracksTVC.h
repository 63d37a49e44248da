#pragma once
// The tracks list: track folders with their tracks, each row with the
// track's length. A track plays in place from its first square, repeating.
#include <memory>

#include "screens/lists/BaseTVC.h"

class Trackplayer;

class TracksTVC : public BaseTVC {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit TracksTVC(QObject* parent = nullptr);
    ~TracksTVC() override;

protected:
    void fillItemRow(ListRow& row, ManagedObject* item) const override;
    bool startPlayingItem(ManagedObject* item) override;
    void stopPlayingItem() override;
    void deleteItemDependents(ManagedObject* item) override;
    ManagedObject* newItem() override;
    void openItem(ManagedObject* item) override;
    QString shareKind(bool folder) const override;

private:
    std::shared_ptr<Trackplayer> m_trackplayer;
};
