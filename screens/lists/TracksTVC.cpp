#include "screens/lists/TracksTVC.h"

#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "playback/Trackplayer.h"

TracksTVC::TracksTVC(QObject* parent) : BaseTVC(QStringLiteral("TrackFolder"), "Tracks", parent) {
    setItemsAndReloadTable();
}

TracksTVC::~TracksTVC() { stopPlaying(); }

void TracksTVC::fillItemRow(ListRow& row, ManagedObject* item) const {
    auto* track = static_cast<Track*>(item);
    row.detail = lengthText(track->bpm(), track->squaresnum());
}

bool TracksTVC::startPlayingItem(ManagedObject* item) {
    m_trackplayer = Trackplayer::create(static_cast<Track*>(item), nullptr, 0, true);
    return m_trackplayer != nullptr;
}

void TracksTVC::stopPlayingItem() {
    if (!m_trackplayer) return;
    Trackplayer::stopTrack(m_trackplayer);
    m_trackplayer.reset();
}

void TracksTVC::deleteItemDependents(ManagedObject* item) {
    CoreDater::shIns().deleteAllTrackLoopsOfTrack(static_cast<Track*>(item));
}

ManagedObject* TracksTVC::newItem() { return CoreDater::shIns().createEmptyUsersTrack(); }

void TracksTVC::openItem(ManagedObject* item) {
    auto* track = dynamic_cast<Track*>(item);
    if (!track) return;
    openScreen(QStringLiteral("qrc:/qt/qml/Quillo/TrackEditor/OneTrackView.qml"),
               {{QStringLiteral("trackName"), QString::fromStdString(track->name())}});
}

QString TracksTVC::shareKind(bool) const { return QStringLiteral("track"); }
