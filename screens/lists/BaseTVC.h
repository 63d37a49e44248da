#pragma once
// What the three library lists share. Section s is folder s of the list's
// kind; its first row is the folder's own row, and while the folder is open
// its items follow. The list decides the rows, their swipe buttons and what
// every tap does; its QML view only draws them. One item plays at a time.
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>
#include <vector>

#include "screens/lists/internal/ListRows.h"
#include "screens/lists/panels/LoopOrFolderEditView.h"
#include "screens/lists/panels/NameAndFolderDelegate.h"

class ManagedObject;

class BaseTVC : public QObject, public NameAndFolderDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("one of TracksTVC, LoopsTVC, SoundsTVC")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString typeOfItems READ typeOfItems CONSTANT)
    Q_PROPERTY(ListRows* rows READ rows CONSTANT)
    Q_PROPERTY(int playingRow READ playingRow NOTIFY playingRowChanged)
    // The open rename panel, or null; the navigation bar hides while it shows.
    Q_PROPERTY(LoopOrFolderEditView* editView READ editView NOTIFY editViewChanged)

public:
    // Swipe sides as the cells report them.
    static constexpr int kLeftSide = 0;
    static constexpr int kRightSide = 1;

    ~BaseTVC() override;

    QString title() const;
    QString typeOfItems() const { return m_typeOfItems; }
    ListRows* rows() { return &m_rows; }
    int playingRow() const { return m_playingItem; }
    LoopOrFolderEditView* editView() const { return m_loopEditV; }

    // Re-reads the folders from the store; the view calls it each time the list is shown.
    Q_INVOKABLE void setItemsAndReloadTable();
    // A tap on a row: stops what plays; a folder opens or closes (kept in the
    // store), an item opens in its editor.
    Q_INVOKABLE void didSelectRow(int row);
    // A row's play button: starts that item, or stops it when it is the one playing.
    Q_INVOKABLE void playItemPressed(int row);
    // A swipe button: side kLeftSide or kRightSide, index from 0 as the row
    // lists them; `origin` is where a panel opened by it grows from (on screen).
    Q_INVOKABLE void swipeButtonTapped(int row, int index, int side, const QRectF& origin = {});
    Q_INVOKABLE void addButtonTapped();
    Q_INVOKABLE void menuButtonTapped();
    Q_INVOKABLE void stopPlaying();
    // The keyboard's play/pause: stops what plays, or plays the item at `row`
    // (the list's first item when `row` is a folder's row or none).
    Q_INVOKABLE void playPausePressed(int row);

    void deleteItemAtRow(int row);
    // Opens the rename panel for a folder row, growing from `start` (on screen).
    Q_INVOKABLE void editFolderAtRow(int row, const QRectF& start = {});
    void shareItemAtRow(int row);
    virtual void copyItemAtRow(int row) { Q_UNUSED(row); }

    void applyName(const QString& name, const QString& folder) override;
    Q_INVOKABLE void removEditView() override;

    // The folder (section) or item a row shows; null when there is none.
    ManagedObject* folderOfRow(int row) const;
    ManagedObject* itemAtRow(int row) const;

    // A track's length for its bpm and squares: "m:ss".
    static QString lengthText(int bpm, int squaresnum);
    // Where the editors and the export screen live once their modules are linked.
    static bool screenExists(const QString& url);

signals:
    void playingRowChanged();
    void editViewChanged();
    void menuRequested();
    // Push this QML file on the window's stack with these properties.
    void pushScreen(const QString& url, const QVariantMap& properties);

protected:
    BaseTVC(const QString& typeOfItems, const char* titleKey, QObject* parent);

    // The kind's own parts.
    std::vector<ManagedObject*> itemsOfFolder(ManagedObject* folder) const;
    virtual void fillItemRow(ListRow& row, ManagedObject* item) const = 0;
    virtual bool startPlayingItem(ManagedObject* item) = 0;
    virtual void stopPlayingItem() = 0;
    // Deletes what depends on the item (and its files); not the item itself.
    virtual void deleteItemDependents(ManagedObject* item) = 0;
    virtual ManagedObject* newItem() = 0;
    // Opens the item (null: a new one from the add button).
    virtual void openItem(ManagedObject* item) = 0;
    virtual QString shareKind(bool folder) const = 0;
    virtual bool itemsCanBeCopied() const { return false; }

    // Pushes a screen when its module is there; otherwise logs and does nothing.
    void openScreen(const QString& url, const QVariantMap& properties);
    void setPlayingRow(int row);
    // A finished one-shot play resets the row's button.
    void playingFinished();

private:
    std::vector<ManagedObject*> m_items;
    ListRows m_rows;
    QString m_typeOfItems;
    const char* m_titleKey;
    int m_playingItem = -1;
    int m_editingFolder = -1;
    QPointer<LoopOrFolderEditView> m_loopEditV;
};
