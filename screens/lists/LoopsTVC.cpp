#include "screens/lists/LoopsTVC.h"

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "playback/Loopplayer.h"
#include "screens/kit/KitColorer.h"
#include "screens/lists/internal/LibraryItems.h"

LoopsTVC::LoopsTVC(QObject* parent) : BaseTVC(QStringLiteral("LoopFolder"), "Loops", parent) {
    setItemsAndReloadTable();
}

LoopsTVC::~LoopsTVC() { stopPlaying(); }

Loop* LoopsTVC::loopAtRow(int row) const { return dynamic_cast<Loop*>(itemAtRow(row)); }

void LoopsTVC::fillItemRow(ListRow& row, ManagedObject* item) const {
    auto* loop = static_cast<Loop*>(item);
    for (Instrument* instrument : loop->instruments()) {
        Sound* sound = instrument->sound();
        row.tileColors.push_back(sound ? toQColor(Colorer::colorForNumber(sound->color()))
                                       : toQColor(Colorer::grayColor()));
    }
    // Every loop shows all its slots; the empty ones are transparent.
    while (row.tileColors.size() < Loopplayer::kSlots) row.tileColors.push_back(QColor(Qt::transparent));
}

bool LoopsTVC::startPlayingItem(ManagedObject* item) {
    m_loopplayer = Loopplayer::create(static_cast<Loop*>(item), nullptr);
    return m_loopplayer != nullptr;
}

void LoopsTVC::stopPlayingItem() {
    if (!m_loopplayer) return;
    Loopplayer::stopLoop(m_loopplayer);
    m_loopplayer->reallyFreeLoadedFiles();
    m_loopplayer.reset();
}

void LoopsTVC::deleteItemDependents(ManagedObject* item) {
    auto* loop = static_cast<Loop*>(item);
    CoreDater::shIns().deleteAllInstrumentsOfLoop(loop);
    CoreDater::shIns().deleteAllTrackLoopsOfLoop(loop);
}

ManagedObject* LoopsTVC::newItem() { return CoreDater::shIns().createEmptyUsersLoop(); }

void LoopsTVC::openItem(ManagedObject* item) {
    auto* loop = dynamic_cast<Loop*>(item);
    if (!loop) return;
    openScreen(QStringLiteral("qrc:/qt/qml/Quillo/LoopEditor/OneLoopView.qml"),
               {{QStringLiteral("loopName"), QString::fromStdString(loop->name())}});
}

QString LoopsTVC::shareKind(bool) const { return QStringLiteral("loop"); }

void LoopsTVC::copyItemAtRow(int row) {
    Loop* loop = loopAtRow(row);
    if (!loop) return;
    stopPlaying();
    std::string folder = library_items::folderName(folderOfRow(row));
    if (folder == localized("Built-in loops")) folder = localized("My loops");
    CoreDater::shIns().createUsersLoopThatCopyOfPreloadedLoop(loop, folder);
    CoreDater::shIns().save();
    setItemsAndReloadTable();
}
