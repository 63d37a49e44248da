#pragma once
// The loops list: loop folders with their loops, each row with the colours
// of its instruments' sounds. A loop plays round and round in place; a swipe
// can copy it (a built-in one into "My loops").
#include <memory>

#include "screens/lists/BaseTVC.h"

class Loop;
class Loopplayer;

class LoopsTVC : public BaseTVC {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit LoopsTVC(QObject* parent = nullptr);
    ~LoopsTVC() override;

    Loop* loopAtRow(int row) const;
    void copyItemAtRow(int row) override;

protected:
    void fillItemRow(ListRow& row, ManagedObject* item) const override;
    bool startPlayingItem(ManagedObject* item) override;
    void stopPlayingItem() override;
    void deleteItemDependents(ManagedObject* item) override;
    ManagedObject* newItem() override;
    void openItem(ManagedObject* item) override;
    QString shareKind(bool folder) const override;
    bool itemsCanBeCopied() const override { return true; }

private:
    std::shared_ptr<Loopplayer> m_loopplayer;
};
