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
    const size_t before = rows_.size();
    const size_t after = rows.size();
    size_t head = 0;
    while (head < before && head < after && rows_[head].key != nullptr && rows_[head].key == rows[head].key) ++head;
    size_t tail = 0;
    while (tail < before - head && tail < after - head && rows_[before - 1 - tail].key != nullptr &&
           rows_[before - 1 - tail].key == rows[after - 1 - tail].key)
        ++tail;
    const size_t gone = before - head - tail;
    const size_t added = after - head - tail;
    const auto at = [](size_t k) { return static_cast<int>(k); };

    if (before == 0 || after == 0 || (gone > 0 && added > 0)) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    } else {
        if (gone > 0) {
            beginRemoveRows({}, at(head), at(head + gone - 1));
            rows_.erase(rows_.begin() + at(head), rows_.begin() + at(head + gone));
            endRemoveRows();
        }
        if (added > 0) {
            beginInsertRows({}, at(head), at(head + added - 1));
            rows_.insert(rows_.begin() + at(head), rows.begin() + at(head), rows.begin() + at(head + added));
            endInsertRows();
        }
        // The rows that stayed may still show something new (a folder's count, a renamed item).
        for (size_t k = 0; k < after; ++k) {
            if (rows_[k] == rows[k]) continue;
            rows_[k] = std::move(rows[k]);
            emit dataChanged(index(at(k)), index(at(k)));
        }
    }
    if (before != after) emit countChanged();
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
