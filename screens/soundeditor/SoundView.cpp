#include "screens/soundeditor/SoundView.h"

#include <QFileInfo>
#include <filesystem>
#include <unistd.h>

#include "app/AppDelegate.h"
#include "engine/AudioFilePlayer.h"
#include "export/Framr.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/media/ImageCache.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "library/util/Log.h"
#include "recording/Autotrimmer.h"
#include "recording/OscilloscopeLayer.h"
#include "recording/Recorder.h"
#include "screens/kit/KitColorer.h"
#include "screens/soundeditor/SoundColorView.h"
#include "screens/soundeditor/SoundPhotoView.h"
#include "screens/soundeditor/internal/InputSwitcher.h"
#include "screens/soundeditor/internal/TimerRefreshClock.h"

namespace fs = std::filesystem;

namespace {

QString qs(const std::string& text) { return QString::fromStdString(text); }
std::string ss(const QString& text) { return text.toStdString(); }

std::string tempRecordingPath() { return Filer::pathToTemporaryDocument(Filer::kTempRecordingName); }
std::string tempPhotoPath() { return Filer::pathToTemporaryDocument(Filer::kTempPhotoName); }
std::string userPhotoPath(const std::string& name) { return Filer::pathToDocument(Filer::jpgf(name)); }

bool exists(const std::string& path) {
    std::error_code e;
    return fs::exists(fs::symlink_status(path, e));
}

}  // namespace

SoundView::SoundView(QObject* parent)
    : NameNFlderChoosrView(QString(), QString::fromStdString(localized("My sounds")), QStringLiteral("SoundFolder"),
                           parent) {}

SoundView::~SoundView() {
    // A panel dropped without Done or Cancel (the window closing) leaves
    // nothing running behind it.
    if (!m_closed) closingCleanUp();
}

AppDelegate* SoundView::app() const { return AppDelegate::shared(); }

SoundView* SoundView::addNewSoundViewTo(QObject* host, const QRectF& startFrame) {
    auto* view = new SoundView(host);
    view->addNewSoundView(startFrame);
    return view;
}

SoundView* SoundView::addExistingSound(Sound* sound, QObject* host, const QRectF& startFrame) {
    auto* view = new SoundView(host);
    view->openExisting(sound, startFrame);
    return view;
}

void SoundView::addNewSoundView(const QRectF& startFrame) {
    m_existing = nullptr;
    setName(qs(CoreDater::shIns().getNameForNewRecordedSound()));
    setFolderName(qs(localized("My sounds")));
    m_colorNum = Colorer::randomColorNum();
    m_elementsShown = false;
    m_waveform = Waveform{};
    m_duration = 0;
    setColor(panelColor());
    moveToCircle(Framr::fullScrnCircle(), startFrame, kStartCornerKoeff);
    m_inputSwitchedOn = true;
    switchInputInBackground(true);
    emit openedChanged();
    emit colorNumChanged();
    emit recordingChanged();
    emit waveformChanged();
}

bool SoundView::addExistingSound(const QString& soundName, const QRectF& startFrame) {
    Sound* sound = CoreDater::shIns().findSoundWithName(ss(soundName));
    if (!sound) return false;
    openExisting(sound, startFrame);
    return true;
}

void SoundView::openExisting(Sound* sound, const QRectF& startFrame) {
    m_existing = sound;
    setName(qs(sound->name()));
    setFolderName(sound->inFolder() ? qs(sound->inFolder()->name()) : QString());
    m_colorNum = sound->color();
    m_elementsShown = true;
    setColor(panelColor());
    moveToCircle(Framr::fullScrnCircle(), startFrame, kStartCornerKoeff);
    emit openedChanged();
    emit colorNumChanged();
    emit recordingChanged();
    emit photoChanged();
    showWaveform(qs(Filer::pathForSound(sound)));
}

// ---------------------------------------------------------------------------
// Properties

QString SoundView::existingName() const { return m_existing ? qs(m_existing->name()) : QString(); }

QColor SoundView::panelColor() const { return KitColorer::colorForNumber(m_colorNum); }
QColor SoundView::colorButtonColor() const { return KitColorer::darkerColorForColor(panelColor()); }
QColor SoundView::switchOnColor() const {
    return KitColorer::darkerColorForColor(KitColorer::darkerColorForColor(panelColor()));
}

QString SoundView::durationText() const {
    return QString::asprintf("%.2f %s", m_duration, localized("s").c_str());
}

QList<qreal> SoundView::waveMinima() const { return {m_waveform.minima.begin(), m_waveform.minima.end()}; }
QList<qreal> SoundView::waveMaxima() const { return {m_waveform.maxima.begin(), m_waveform.maxima.end()}; }

void SoundView::setWaveformColumns(int columns) {
    if (columns <= 0 || columns == m_columns) return;
    m_columns = columns;
    if (!m_wavePath.isEmpty()) showWaveform(m_wavePath);
}

bool SoundView::autotrimRecords() const { return app() ? app()->autotrimRecords : true; }

void SoundView::setAutotrimRecords(bool on) {
    AppDelegate* a = app();
    if (!a || a->autotrimRecords == on) return;
    a->autotrimRecords = on;
    a->saveState();
    emit autotrimRecordsChanged();
}

QString SoundView::photoPath() const {
    if (m_photoChanged) return pathOfPhoto();
    if (m_existing && Filer::jpgFileExistsForSound(m_existing)) return qs(Filer::pathToJpgFileForSound(m_existing));
    return {};
}

QImage SoundView::photoImage() const {
    const QString path = photoPath();
    return path.isEmpty() ? QImage() : Filer::shIns().imageCache().cachedImageWithFilePath(ss(path));
}

QString SoundView::pathOfPhoto() const {
    if (m_existing && !m_existing->preloaded()) return qs(userPhotoPath(m_existing->name()));
    return qs(tempPhotoPath());
}

void SoundView::setRecording(bool recording) {
    if (recording == m_recording) return;
    m_recording = recording;
    emit recordingChanged();
}

void SoundView::setPlaying(bool playing) {
    if (playing == m_playing) return;
    m_playing = playing;
    emit playingChanged();
}

void SoundView::setError(const QString& error) {
    m_lastError = error;
    emit lastErrorChanged();
}

// ---------------------------------------------------------------------------
// Recording

void SoundView::recordPressed() {
    if (m_recording)
        stopRecordPressed();
    else
        startRecordPressed();
}

void SoundView::startRecordPressed() {
    AppDelegate* a = app();
    if (!a || m_recording || m_existing) return;  // an existing sound has no record button
    stopPreview();
    m_elementsShown = false;
    // The microphone must be on before the recorder attaches to it.
    waitForInputSwitch();
    addOscilloscop();
    a->beginRecordingInput(true, true);
    setRecording(true);
}

void SoundView::addOscilloscop() {
    AppDelegate* a = app();
    if (!a || !a->audioController()) return;
    auto layer = std::make_shared<OscilloscopeLayer>(std::make_unique<TimerRefreshClock>());
    const QRectF frame = Framr::ffSoundWave();
    layer->width = frame.width();
    layer->height = frame.height();
    layer->lineColor = 0xFFFFFFFF;  // the background colour
    QPointer<SoundView> self(this);
    layer->onDisplay = [self](const std::vector<OscilloscopePoint>& points) {
        if (!self) return;
        self->m_tracePoints.clear();
        self->m_tracePoints.reserve(qsizetype(points.size()));
        for (const OscilloscopePoint& p : points) self->m_tracePoints.append(QPointF(p.x, p.y));
        emit self->tracePointsChanged();
    };
    layer->onRemoveFromSuperlayer = [self] {
        if (!self) return;
        self->m_tracePoints.clear();
        emit self->tracePointsChanged();
    };
    a->inputOscilloscope = layer;
    a->audioController()->addInputReceiver(layer);
    layer->start();
}

void SoundView::stopRecordPressed() {
    AppDelegate* a = app();
    if (!a || !m_recording) return;
    a->removeOsciloscp();
    a->endRecording();
    if (a->autotrimRecords) {
        auto trimmer = Autotrimmer::initDefault();
        trimmer->autoTrimBeginAndEnd(true);
        trimmer->releaseAutotrimmr();
    }
    showWaveform(qs(tempRecordingPath()));
    m_elementsShown = true;
    setRecording(false);
}

void SoundView::showWaveform(const QString& path) {
    m_wavePath = path;
    if (!waveformOfFile(ss(path), m_columns, &m_waveform)) m_waveform = Waveform{};
    m_duration = m_waveform.seconds();
    emit waveformChanged();
}

// ---------------------------------------------------------------------------
// Preview

void SoundView::playPressed() {
    AppDelegate* a = app();
    if (!a || !a->audioController()) return;
    if (a->oneshot) {
        stopPreview();
        return;
    }
    const std::string url = m_existing ? Filer::urlForSound(m_existing) : tempRecordingPath();
    AudioError error;
    std::shared_ptr<AudioFilePlayer> player =
        AudioFilePlayer::audioFilePlayerWithURL(url, a->audioController(), &error);
    if (!player) {
        qlog("%s", error.localizedDescription.c_str());
        return;
    }
    player->setRemoveUponFinish(true);
    QPointer<SoundView> self(this);
    std::weak_ptr<AudioFilePlayer> weak = player;
    player->completionBlock = [self, weak] {
        AppDelegate* a = AppDelegate::shared();
        const std::shared_ptr<AudioFilePlayer> finished = weak.lock();
        if (a && finished && a->oneshot == finished) a->oneshot.reset();
        if (self) self->setPlaying(false);
    };
    a->oneshot = player;
    a->audioController()->addChannels({player});
    setPlaying(true);
}

void SoundView::stopPreview() {
    if (AppDelegate* a = app(); a && a->oneshot) a->removeOnesht();
    setPlaying(false);
}

// ---------------------------------------------------------------------------
// Settings page, colour, photo

void SoundView::settingsPressed() {
    if (m_settingsShown) return;
    m_settingsShown = true;
    emit settingsShownChanged();
}

void SoundView::okSettingsPressed() {
    if (!m_settingsShown) return;
    m_settingsShown = false;
    emit settingsShownChanged();
}

SoundColorView* SoundView::colorPressed() {
    if (m_soundColorV) return m_soundColorV;
    auto* chooser = new SoundColorView(this);
    chooser->setColorNumBefore(m_colorNum);
    chooser->setOnFScircle(true);
    connect(chooser, &SoundColorView::colorPicked, this, &SoundView::colorPicked);
    connect(chooser, &SoundColorView::removeSoundColorView, chooser, &QObject::deleteLater);
    m_soundColorV = chooser;
    return chooser;
}

SoundPhotoView* SoundView::soundPhotoV() const { return m_soundPhotoV; }
SoundColorView* SoundView::soundColorV() const { return m_soundColorV; }

void SoundView::colorPicked(int colorNum) {
    if (colorNum == m_colorNum) return;
    m_colorNum = colorNum;
    setColor(panelColor());
    emit colorNumChanged();
}

SoundPhotoView* SoundView::photoPressed() {
    if (m_soundPhotoV) return m_soundPhotoV;
    auto* chooser = new SoundPhotoView(this);
    const QString current = photoPath();
    chooser->setImageBefore(current.isEmpty() ? ImageCache::placeholderImage()
                                              : Filer::shIns().imageCache().cachedImageWithFilePath(ss(current)));
    connect(chooser, &SoundPhotoView::cameraOrPhotoPickerPressed, this, &SoundView::cameraOrPhotoPickerPressedOnSp);
    connect(chooser, &SoundPhotoView::imagePicked, this, &SoundView::imagePicked);
    connect(chooser, &SoundPhotoView::removeSoundPhotoView, chooser, &QObject::deleteLater);
    m_soundPhotoV = chooser;
    return chooser;
}

void SoundView::imagePicked(const QImage& image) {
    qlog("imagePicked");
    const QString path = pathOfPhoto();
    if (!image.save(path, "JPG", 85)) {
        setError(tr("The photo could not be written to %1").arg(path));
        return;
    }
    Filer::shIns().imageCache().updateCashedImageAtPath(ss(path));
    m_photoChanged = true;
    ++m_photoRevision;
    emit photoChanged();
}

// ---------------------------------------------------------------------------
// Done and Cancel

std::string SoundView::storedName() const {
    const std::string cleaned = Utly::deleteBadCharactersFromString(Utly::oneLine(ss(name())));
    return Utly::stringContainOnlyWhitespaces(cleaned) ? localized("Sound") : cleaned;
}

std::string SoundView::storedFolderName() const {
    const std::string folder = Utly::oneLine(ss(folderName()));
    return Utly::stringContainOnlyWhitespaces(folder) ? localized("My sounds") : folder;
}

bool SoundView::nothingChanged() const {
    if (!m_existing) return false;
    const std::string folder = m_existing->inFolder() ? m_existing->inFolder()->name() : std::string();
    return storedName() == m_existing->name() && ss(folderName()) == folder && m_colorNum == m_existing->color() &&
           !m_photoChanged;
}

// A name free in the store and on disk (a stray file of that name would make
// the copy fail), short enough for the file system with ".wav" or ".jpg".
std::string SoundView::uniqueSoundName(const std::string& wanted) const {
    long nameMax = ::pathconf(Filer::documentsDirectory().c_str(), _PC_NAME_MAX);
    if (nameMax <= 0) nameMax = 255;
    auto onDisk = [](const std::string& name) {
        return exists(Filer::pathForWavSound(name)) || exists(userPhotoPath(name));
    };
    return Utly::changeNameOf("Sound", wanted, onDisk, size_t(nameMax) - 4);
}

void SoundView::closingCleanUp() {
    AppDelegate* a = app();
    if (!a) return;
    if (a->inputOscilloscope) a->removeOsciloscp();
    if (m_recording) {
        a->endRecording();
        setRecording(false);
    }
    stopPreview();
}

bool SoundView::createNewSound(Sound* source) {
    if (source && nothingChanged()) return false;
    const std::string name = uniqueSoundName(storedName());
    const std::string folder = storedFolderName();
    // The sound file first: if it cannot be made, nothing else changes.
    if (source) {
        if (!Filer::copyFile(Filer::urlForSound(source), Filer::urlForUsersSoundWithName(name))) {
            setError(tr("The sound could not be copied"));
            return false;
        }
    } else if (!Filer::renameFileFromPath(tempRecordingPath(), Filer::pathForWavSound(name))) {
        setError(tr("There is no recording to save"));
        return false;
    }
    if (m_photoChanged) {
        Filer::shIns().imageCache().removeCashedImageAtPath(tempPhotoPath());
        Filer::renameFileFromPath(tempPhotoPath(), userPhotoPath(name));
    }
    Sound* sound = CoreDater::shIns().createRecordedSound(name, int16_t(m_colorNum), folder);
    if (!sound) {
        setError(qs(CoreDater::shIns().lastSaveError()));
        return false;
    }
    emit soundWasAddedOrEdited(qs(name));
    return true;
}

bool SoundView::editExistingSound() {
    if (!m_existing || nothingChanged()) return false;
    Sound* sound = m_existing;
    const std::string oldFolder = sound->inFolder() ? sound->inFolder()->name() : std::string();
    if (ss(folderName()) != oldFolder) sound->setInFolder(CoreDater::shIns().soundFolder(storedFolderName()));
    sound->setColor(int16_t(m_colorNum));
    const std::string wanted = storedName();
    if (wanted != sound->name()) {
        const std::string oldName = sound->name();
        const std::string newName = uniqueSoundName(wanted);
        const std::string oldPhoto = userPhotoPath(oldName), newPhoto = userPhotoPath(newName);
        Filer::shIns().imageCache().removeCashedImageAtPath(oldPhoto);
        const bool photoMoved = exists(oldPhoto) && Filer::renameFileFromPath(oldPhoto, newPhoto);
        if (Filer::renameFileFromPath(Filer::pathForWavSound(oldName), Filer::pathForWavSound(newName))) {
            sound->setName(newName);
        } else {
            // The sound keeps its name, so its photo goes back to it.
            if (photoMoved) Filer::renameFileFromPath(newPhoto, oldPhoto);
            setError(tr("The sound could not be renamed"));
        }
    }
    CoreDater::updateDateOfSound(sound);
    CoreDater::shIns().save();
    emit soundWasAddedOrEdited(qs(sound->name()));
    return true;
}

void SoundView::donePressed() {
    if (m_closed) return;
    finishEditing();  // a name still being typed counts
    closingCleanUp();
    QString result = QStringLiteral("unchanged");
    QString soundName = existingName();
    connect(this, &SoundView::soundWasAddedOrEdited, this, [&](const QString& n) { soundName = n; });
    bool changed = false;
    if (!m_existing)
        changed = createNewSound(nullptr);
    else if (m_existing->preloaded())
        changed = createNewSound(m_existing);
    else
        changed = editExistingSound();
    disconnect(this, &SoundView::soundWasAddedOrEdited, this, nullptr);
    if (changed)
        result = (m_existing && !m_existing->preloaded()) ? QStringLiteral("edited") : QStringLiteral("created");
    else if (!m_existing)
        result = QStringLiteral("failed");
    if (m_inputSwitchedOn) switchInputInBackground(false);
    m_closed = true;
    emit finished(result, soundName);
    emit removeSoundView();
}

void SoundView::cancelPressed() {
    if (m_closed) return;
    closingCleanUp();
    if (!m_existing) emit soundRecordingWasCancelled();
    if (m_inputSwitchedOn) switchInputInBackground(false);
    m_closed = true;
    emit finished(QStringLiteral("cancelled"), QString());
    emit removeSoundView();
}

void SoundView::switchInputInBackground(bool enabled) { InputSwitcher::shared().switchInput(enabled); }
void SoundView::waitForInputSwitch() { InputSwitcher::shared().wait(); }
