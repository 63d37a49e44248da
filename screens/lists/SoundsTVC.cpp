#include "screens/lists/SoundsTVC.h"

#include <QPointer>

#include "app/AppDelegate.h"
#include "engine/AudioController.h"
#include "engine/AudioFilePlayer.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/util/Log.h"
#include "screens/kit/KitColorer.h"

SoundsTVC::SoundsTVC(QObject* parent) : BaseTVC(QStringLiteral("SoundFolder"), "Sounds", parent) {
    setItemsAndReloadTable();
    // A file imported while this list is on top shows at once.
    if (AppDelegate* app = AppDelegate::shared()) {
        QPointer<SoundsTVC> self(this);
        app->soundsListReloader = [self] {
            if (self) self->setItemsAndReloadTable();
        };
        m_listening = true;
    }
}

SoundsTVC::~SoundsTVC() {
    stopPlaying();
    if (AppDelegate* app = AppDelegate::shared(); app && m_listening) app->soundsListReloader = nullptr;
}

void SoundsTVC::fillItemRow(ListRow& row, ManagedObject* item) const {
    row.dotColor = toQColor(Colorer::colorForNumber(static_cast<Sound*>(item)->color()));
}

bool SoundsTVC::startPlayingItem(ManagedObject* item) {
    AppDelegate* app = AppDelegate::shared();
    if (!app || !app->audioController()) return false;
    auto* sound = static_cast<Sound*>(item);
    AudioError error;
    auto player = AudioFilePlayer::audioFilePlayerWithURL(Filer::urlForSound(sound), app->audioController(), &error);
    if (!player) {
        qlog("cannot play %s: %s", sound->name().c_str(), error.localizedDescription.c_str());
        return false;
    }
    player->setRemoveUponFinish(true);
    QPointer<SoundsTVC> self(this);
    AudioFilePlayer* raw = player.get();
    player->completionBlock = [self, raw] {
        AppDelegate* app = AppDelegate::shared();
        if (app && app->oneshot.get() == raw) app->oneshot.reset();  // already off the controller
        if (self) self->playingFinished();
    };
    app->removeOnesht();
    app->oneshot = player;
    app->audioController()->addChannels({player});
    return true;
}

void SoundsTVC::stopPlayingItem() {
    if (AppDelegate* app = AppDelegate::shared()) app->removeOnesht();
}

void SoundsTVC::deleteItemDependents(ManagedObject* item) {
    auto* sound = static_cast<Sound*>(item);
    CoreDater::shIns().deleteAllInstrumentsOfSound(sound);
    if (!sound->preloaded()) {
        Filer::deleteFile(Filer::wavf(sound->name()));
        Filer::deleteFile(Filer::jpgf(sound->name()));
    }
}

void SoundsTVC::openItem(ManagedObject* item) {
    auto* sound = dynamic_cast<Sound*>(item);
    openScreen(QStringLiteral("qrc:/qt/qml/Quillo/SoundEditor/OneSoundView.qml"),
               {{QStringLiteral("soundName"), sound ? QString::fromStdString(sound->name()) : QString()}});
}

QString SoundsTVC::shareKind(bool folder) const { return folder ? QStringLiteral("soundFolder") : QStringLiteral("sound"); }
