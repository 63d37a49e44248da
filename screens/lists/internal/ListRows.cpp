#include "screens/lists/internal/ListRows.h"

int ListRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

const ListRow* ListRows::rowAt(int row) const {
    if (row < 0 || row >= count()) return nullptr;
    return &rows_[static_cast<size_t>(row)];
}

QVariant ListRows::data(const QModelIndex& index, int role) const {
    const ListRow* r = rowAt(index.row());
    if (!r) return {};
    switch (role) {
        case IsFolderRole: return r->isFolder;
        case SectionRole: return r->section;
        case Qt::DisplayRole:
        case NameRole: return r->name;
        case AuthorRole: return r->author;
        case OpenedRole: return r->opened;
        case ItemCountRole: return r->itemCount;
        case PlayingRole: return r->playing;
        case TileColorsRole: return QVariant::fromValue(r->tileColors);
        case DotColorRole: return r->dotColor;
        case DetailRole: return r->detail;
        case RightButtonsRole: return r->rightButtons;
        case LeftButtonsRole: return r->leftButtons;
        default: return {};
    }
}

QHash<int, QByteArray> ListRows::roleNames() const {
    return {{IsFolderRole, "isFolder"}, {SectionRole, "section"}, {NameRole, "name"},          {AuthorRole, "author"},
            {OpenedRole, "opened"}, {ItemCountRole, "itemCount"},     {PlayingRole, "playing"}, {TileColorsRole, "tileColors"},
            {DotColorRole, "dotColor"},     {DetailRole, "detail"},         {RightButtonsRole, "rightButtons"},
            {LeftButtonsRole, "leftButtons"}};
}

void ListRows::setRows(std::vector<ListRow> rows) {
    const bool countChanges = rows.size() != rows_.size();
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
    if (countChanges) emit countChanged();
}

void ListRows::setPlayingRow(int row) {
    for (int k = 0; k < count(); ++k) {
        ListRow& r = rows_[static_cast<size_t>(k)];
        const bool playing = (k == row);
        if (r.playing == playing) continue;
        r.playing = playing;
        emit dataChanged(index(k), index(k), {PlayingRole});
    }
}
