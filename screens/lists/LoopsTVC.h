#pragma once
// The loops list: the loop folders, newest first, each a row that opens and
// closes, with the loops of an open folder below it. A loop plays in place
// from its row's play button; a second press stops it.
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <vector>

#include "screens/lists/internal/ListRows.h"

class Loop;
class LoopFolder;
class Loopplayer;

class LoopsTVC : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString typeOfItems READ typeOfItems CONSTANT)
    Q_PROPERTY(ListRows* rows READ rows CONSTANT)
    Q_PROPERTY(int playingRow READ playingRow NOTIFY playingRowChanged)

public:
    explicit LoopsTVC(QObject* parent = nullptr);
    ~LoopsTVC() override;

    QString title() const;
    QString typeOfItems() const { return QStringLiteral("LoopFolder"); }
    ListRows* rows() { return &rows_; }
    int playingRow() const { return playingRow_; }

    // Re-reads the folders from the store; the view calls it each time the list is shown.
    Q_INVOKABLE void setItemsAndReloadTable();
    // A tap on a row: stops what plays; a folder row opens or closes (saved in the store).
    Q_INVOKABLE void didSelectRow(int row);
    // The row's play button: starts that loop, or stops it when it is the one playing.
    Q_INVOKABLE void playItemPressed(int row);
    // The bar's menu button: stops what plays and asks for the side menu.
    Q_INVOKABLE void menuButtonTapped();
    Q_INVOKABLE void stopPlaying();

    Loop* loopAtRow(int row) const;

signals:
    void menuRequested();
    void playingRowChanged();

private:
    void setPlayingRow(int row);

    std::vector<LoopFolder*> items_;
    ListRows rows_;
    std::shared_ptr<Loopplayer> loopplayer_;
    int playingRow_ = -1;
};
