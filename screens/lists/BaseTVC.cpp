#include "screens/lists/BaseTVC.h"

#include <QFile>

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"
#include "screens/lists/internal/LibraryItems.h"

BaseTVC::BaseTVC(const QString& typeOfItems, const char* titleKey, QObject* parent)
    : QObject(parent), m_typeOfItems(typeOfItems), m_titleKey(titleKey) {}

BaseTVC::~BaseTVC() { delete m_loopEditV; }

QString BaseTVC::title() const { return QString::fromStdString(localized(m_titleKey)); }

void BaseTVC::setItemsAndReloadTable() {
    stopPlaying();
    m_items.clear();
    CoreDater& dater = CoreDater::shIns();
    if (!dater.managedObjectContext()) {
        m_rows.setRows({});
        return;
    }
    const bool soundsList = m_typeOfItems == QLatin1String("SoundFolder");
    const QString share = QStringLiteral("shareRowButton");
    const QString remove = QStringLiteral("deleteRowButton");
    std::vector<ListRow> rows;
    for (ManagedObject* folder : dater.getAllItemsOfEntity(m_typeOfItems.toStdString())) {
        const int section = static_cast<int>(m_items.size());
        m_items.push_back(folder);
        const std::vector<ManagedObject*> items = itemsOfFolder(folder);
        ListRow folderRow;
        folderRow.key = folder;
        folderRow.isFolder = true;
        folderRow.section = section;
        folderRow.name = QString::fromStdString(library_items::folderName(folder));
        folderRow.opened = library_items::folderOpened(folder);
        folderRow.itemCount = static_cast<int>(items.size());
        // A folder holding anything built in can be neither deleted nor renamed.
        bool anyBuiltIn = false;
        for (ManagedObject* item : items) anyBuiltIn = anyBuiltIn || !library_items::isUsers(item);
        if (!anyBuiltIn) folderRow.rightButtons = {remove, QStringLiteral("editRowButton")};
        if (soundsList) folderRow.leftButtons = {share};
        rows.push_back(folderRow);
        if (!folderRow.opened) continue;
        int position = 0;
        for (ManagedObject* item : items) {
            ListRow r;
            r.key = item;
            r.section = section;
            r.item = position++;
            r.name = QString::fromStdString(library_items::itemName(item));
            r.author = QString::fromStdString(library_items::isUsers(item) ? dater.userArtistsName()
                                                                           : library_items::itemArtist(item));
            if (library_items::isUsers(item)) r.rightButtons = {remove};
            r.leftButtons = {share};
            if (itemsCanBeCopied()) r.leftButtons << QStringLiteral("copyRowButton");
            fillItemRow(r, item);
            rows.push_back(r);
        }
    }
    m_rows.setRows(std::move(rows));
}

std::vector<ManagedObject*> BaseTVC::itemsOfFolder(ManagedObject* folder) const {
    return library_items::folderItems(folder);
}

ManagedObject* BaseTVC::folderOfRow(int row) const {
    const ListRow* r = m_rows.rowAt(row);
    if (!r || r->section >= static_cast<int>(m_items.size())) return nullptr;
    return m_items[static_cast<size_t>(r->section)];
}

ManagedObject* BaseTVC::itemAtRow(int row) const {
    const ListRow* r = m_rows.rowAt(row);
    ManagedObject* folder = folderOfRow(row);
    if (!r || r->isFolder || !folder) return nullptr;
    const std::vector<ManagedObject*> items = itemsOfFolder(folder);
    return r->item < static_cast<int>(items.size()) ? items[static_cast<size_t>(r->item)] : nullptr;
}

void BaseTVC::didSelectRow(int row) {
    stopPlaying();
    const ListRow* r = m_rows.rowAt(row);
    if (!r) return;
    if (r->isFolder) {
        ManagedObject* folder = folderOfRow(row);
        library_items::setFolderOpened(folder, !library_items::folderOpened(folder));
        CoreDater::shIns().save();
        setItemsAndReloadTable();
        return;
    }
    if (ManagedObject* item = itemAtRow(row)) openItem(item);
}

void BaseTVC::playItemPressed(int row) {
    const bool wasPlaying = (row == m_playingItem);
    stopPlaying();
    if (wasPlaying) return;  // a second press stops
    ManagedObject* item = itemAtRow(row);
    if (!item) {
        const ListRow* r = m_rows.rowAt(row);
        qlog("play %ld sect %ld row", static_cast<long>(r ? r->section : -1), static_cast<long>(r ? r->item + 1 : -1));
        return;
    }
    if (startPlayingItem(item)) setPlayingRow(row);
}

void BaseTVC::playPausePressed(int row) {
    if (m_playingItem >= 0) {
        stopPlaying();
        return;
    }
    if (!itemAtRow(row)) {
        row = -1;
        for (int k = 0; k < m_rows.count() && row < 0; ++k)
            if (itemAtRow(k)) row = k;
    }
    if (row >= 0) playItemPressed(row);
}

void BaseTVC::swipeButtonTapped(int row, int index, int side, const QRectF& origin) {
    const ListRow* r = m_rows.rowAt(row);
    if (!r) return;
    const QStringList& buttons = side == kRightSide ? r->rightButtons : r->leftButtons;
    if (index < 0 || index >= buttons.size()) return;  // the row has no such button
    if (side == kRightSide && index == 0) deleteItemAtRow(row);
    else if (side == kRightSide && index == 1 && r->isFolder) editFolderAtRow(row, origin);
    else if (side == kLeftSide && index == 0) shareItemAtRow(row);
    else if (side == kLeftSide && index == 1) copyItemAtRow(row);
}

void BaseTVC::addButtonTapped() {
    stopPlaying();
    ManagedObject* item = newItem();
    if (item) CoreDater::shIns().save();
    openItem(item);
}

void BaseTVC::menuButtonTapped() {
    stopPlaying();
    emit menuRequested();
}

void BaseTVC::stopPlaying() {
    if (m_playingItem >= 0) stopPlayingItem();
    setPlayingRow(-1);
}

void BaseTVC::setPlayingRow(int row) {
    if (row == m_playingItem) return;
    m_playingItem = row;
    m_rows.setPlayingRow(row);
    emit playingRowChanged();
}

void BaseTVC::playingFinished() { setPlayingRow(-1); }

void BaseTVC::deleteItemAtRow(int row) {
    stopPlaying();
    const ListRow* r = m_rows.rowAt(row);
    if (!r) return;
    CoreDater& dater = CoreDater::shIns();
    if (r->isFolder) {
        if (r->rightButtons.isEmpty()) return;  // holds built-in items
        ManagedObject* folder = folderOfRow(row);
        for (ManagedObject* item : itemsOfFolder(folder)) {
            deleteItemDependents(item);
            dater.deleteObject(item);
        }
        dater.save();
        dater.deleteObject(folder);
    } else {
        ManagedObject* item = itemAtRow(row);
        if (!item || !library_items::isUsers(item)) return;
        deleteItemDependents(item);
        dater.deleteObject(item);
    }
    dater.save();
    setItemsAndReloadTable();
}

void BaseTVC::editFolderAtRow(int row, const QRectF& start) {
    const ListRow* r = m_rows.rowAt(row);
    if (!r || !r->isFolder || r->rightButtons.size() < 2 || m_loopEditV) return;
    stopPlaying();
    m_editingFolder = r->section;
    m_loopEditV = new LoopOrFolderEditView(r->name, QString(), m_typeOfItems, this, this);
    m_loopEditV->showFrom(start);
    emit editViewChanged();
}

void BaseTVC::applyName(const QString& name, const QString& folder) {
    Q_UNUSED(folder);  // folders are not moved into folders
    if (m_editingFolder < 0 || m_editingFolder >= static_cast<int>(m_items.size())) return;
    ManagedObject* edited = m_items[static_cast<size_t>(m_editingFolder)];
    if (name.toStdString() != library_items::folderName(edited)) {
        library_items::setFolderName(edited, Utly::changeNameOf(m_typeOfItems.toStdString(), name.toStdString()));
        CoreDater::shIns().save();
    }
    setItemsAndReloadTable();
}

void BaseTVC::removEditView() {
    m_editingFolder = -1;
    if (!m_loopEditV) return;
    m_loopEditV->deleteLater();
    m_loopEditV = nullptr;
    emit editViewChanged();
}

void BaseTVC::shareItemAtRow(int row) {
    stopPlaying();
    const ListRow* r = m_rows.rowAt(row);
    if (!r) return;
    openScreen(QStringLiteral("qrc:/qt/qml/Quillo/Export/ExportView.qml"),
               {{QStringLiteral("kind"), shareKind(r->isFolder)}, {QStringLiteral("name"), r->name}});
}

void BaseTVC::openScreen(const QString& url, const QVariantMap& properties) {
    if (!screenExists(url)) {
        qlog("no screen at %s yet", url.toUtf8().constData());
        return;
    }
    emit pushScreen(url, properties);
}

bool BaseTVC::screenExists(const QString& url) {
    // "qrc:/x" is the resource ":/x".
    return QFile::exists(url.startsWith(QLatin1String("qrc:")) ? url.mid(3) : url);
}

QString BaseTVC::lengthText(int bpm, int squaresnum) {
    if (bpm <= 0) return QStringLiteral("0:00");
    const int seconds = static_cast<int>((240.0 / bpm) * squaresnum);
    const int rest = seconds % 60;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(rest > 9 ? QString::number(rest) : QStringLiteral("0%1").arg(rest));
}
