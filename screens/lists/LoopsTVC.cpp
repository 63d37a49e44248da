#include "screens/lists/LoopsTVC.h"

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "playback/Loopplayer.h"
#include "screens/lists/ColorerQml.h"

LoopsTVC::LoopsTVC(QObject* parent) : QObject(parent) { setItemsAndReloadTable(); }

LoopsTVC::~LoopsTVC() { stopPlaying(); }

QString LoopsTVC::title() const { return QString::fromStdString(localized("Loops")); }

void LoopsTVC::setItemsAndReloadTable() {
    stopPlaying();
    items_.clear();
    std::vector<ListRow> rows;
    CoreDater& dater = CoreDater::shIns();
    if (!dater.managedObjectContext()) {
        rows_.setRows({});
        return;
    }
    const QString usersName = QString::fromStdString(dater.userArtistsName());
    for (ManagedObject* o : dater.getAllItemsOfEntity("LoopFolder")) {
        auto* folder = static_cast<LoopFolder*>(o);
        const int section = static_cast<int>(items_.size());
        items_.push_back(folder);
        ListRow folderRow;
        folderRow.isFolder = true;
        folderRow.section = section;
        folderRow.name = QString::fromStdString(folder->name());
        folderRow.opened = folder->opened();
        folderRow.itemCount = static_cast<int>(folder->items().size());
        rows.push_back(folderRow);
        if (!folder->opened()) continue;
        int position = 0;
        for (Loop* loop : folder->items()) {
            ListRow r;
            r.section = section;
            r.item = position++;
            r.name = QString::fromStdString(loop->name());
            r.author = loop->preloaded() ? QString::fromStdString(loop->artist()) : usersName;
            for (Instrument* instrument : loop->instruments()) {
                Sound* sound = instrument->sound();
                r.tileColors.push_back(sound ? ColorerQml::toQColor(Colorer::colorForNumber(sound->color()))
                                             : ColorerQml::toQColor(Colorer::grayColor()));
            }
            // Every loop shows all its slots; the empty ones are transparent.
            while (r.tileColors.size() < Loopplayer::kSlots) r.tileColors.push_back(QColor(Qt::transparent));
            rows.push_back(r);
        }
    }
    rows_.setRows(std::move(rows));
}

Loop* LoopsTVC::loopAtRow(int row) const {
    const ListRow* r = rows_.rowAt(row);
    if (!r || r->isFolder) return nullptr;
    const LoopFolder* folder = items_[static_cast<size_t>(r->section)];
    const auto& loops = folder->items();
    return r->item < static_cast<int>(loops.size()) ? loops[static_cast<size_t>(r->item)] : nullptr;
}

void LoopsTVC::didSelectRow(int row) {
    stopPlaying();
    const ListRow* r = rows_.rowAt(row);
    if (!r) return;
    if (r->isFolder) {
        LoopFolder* folder = items_[static_cast<size_t>(r->section)];
        folder->setOpened(!folder->opened());
        CoreDater::shIns().save();
        setItemsAndReloadTable();
    }
    // An item row opens the loop editor, which is not part of this window yet.
}

void LoopsTVC::playItemPressed(int row) {
    const bool wasPlaying = (row == playingRow_);
    stopPlaying();
    if (wasPlaying) return;  // a second press stops
    Loop* loop = loopAtRow(row);
    if (!loop) return;
    loopplayer_ = Loopplayer::create(loop, nullptr);
    if (loopplayer_) setPlayingRow(row);
}

void LoopsTVC::menuButtonTapped() {
    stopPlaying();
    emit menuRequested();
}

void LoopsTVC::stopPlaying() {
    if (loopplayer_) {
        Loopplayer::stopLoop(loopplayer_);
        loopplayer_->reallyFreeLoadedFiles();
        loopplayer_.reset();
    }
    setPlayingRow(-1);
}

void LoopsTVC::setPlayingRow(int row) {
    if (row == playingRow_) return;
    playingRow_ = row;
    rows_.setPlayingRow(row);
    emit playingRowChanged();
}
