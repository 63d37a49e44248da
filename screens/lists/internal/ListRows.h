#pragma once
// The rows a library list shows, flattened: each folder's own row, followed by
// its items' rows while the folder is open. The list controller decides the
// rows; this model only hands them to the view.
#include <QAbstractListModel>
#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <vector>

struct ListRow {
    const void* key = nullptr;  // the folder or item shown; a row keeps its place in the view while its key does
    bool isFolder = false;
    int section = 0;    // the folder's position in the list
    int item = -1;      // the item's position in its folder; -1 on a folder row
    QString name;
    QString author;     // items only
    bool opened = false;             // folders only
    int itemCount = 0;               // folders only
    bool playing = false;            // items only
    QList<QColor> tileColors;        // loops: one per slot, transparent where the slot is empty
    QColor dotColor = Qt::transparent;  // sounds: the sound's colour
    QString detail;                  // tracks: the length, "m:ss"
    QStringList rightButtons;        // swipe buttons (icon names) on the right side, index 0 first
    QStringList leftButtons;         // and on the left side

    bool operator==(const ListRow&) const = default;
};

class ListRows : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A list controller owns its rows")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        IsFolderRole = Qt::UserRole + 1,
        SectionRole,
        NameRole,
        AuthorRole,
        OpenedRole,
        ItemCountRole,
        PlayingRole,
        TileColorsRole,
        DotColorRole,
        DetailRole,
        RightButtonsRole,
        LeftButtonsRole,
    };

    using QAbstractListModel::QAbstractListModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return static_cast<int>(rows_.size()); }
    const ListRow* rowAt(int row) const;
    // Replaces the rows. When the change is rows taken out of one place or put
    // in at one place (an item deleted or copied, a folder opened or closed),
    // the view is told just that, so the rows around keep their delegates and
    // can slide; any other change resets the view.
    void setRows(std::vector<ListRow> rows);
    // Marks one row as playing (or none with -1), telling the view only about the rows that changed.
    void setPlayingRow(int row);

signals:
    void countChanged();

private:
    std::vector<ListRow> rows_;
};
