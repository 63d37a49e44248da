#include "export/ExportVC.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <QUrl>

#include "app/AppDelegate.h"
#include "export/Framr.h"
#include "export/RenderedSound.h"
#include "export/mail/MailComposer.h"
#include "export/movie/MovieMaker.h"
#include "export/movie/ViewRecorder.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "library/util/Log.h"
#include "playback/Loopplayer.h"
#include "playback/MainThreadDelegates.h"
#include "playback/Trackplayer.h"
#include "recording/Autotrimmer.h"
#include "recording/Recorder.h"

namespace {
QString tr8(const char* key) { return QString::fromStdString(localized(key)); }
QString& videosFolderOverride() {
    static QString folder;
    return folder;
}
}  // namespace

ExportVC::ExportVC(QObject* parent) : QObject(parent), loopView_(new LoopView(this)) {}

ExportVC::~ExportVC() {
    // Reports still on their way must not reach a half-destroyed screen.
    LoopplayerDelegate::stopReceivingReports();
    TrackplayerDelegate::stopReceivingReports();
    if (phase_ != Closed && phase_ != Idle) {
        ++generation_;
        if (loopplayer_) Loopplayer::stopLoop(loopplayer_);
        if (trackplayer_) Trackplayer::stopTrack(trackplayer_);
        if (AppDelegate* app = AppDelegate::shared()) app->endRecording();
        if (viewRecorder_) viewRecorder_->cancelViewRecorder();
    }
    loopBridge_.reset();
    trackBridge_.reset();
    if (viewRecorder_ && viewRecorder_->writer) viewRecorder_->writer->setDelegate(nullptr);
}

// ---- content -------------------------------------------------------------

void ExportVC::setKind(const QString& kind) {
    if (kind == kind_) return;
    kind_ = kind;
    lookUpContent();
}

void ExportVC::setName(const QString& name) {
    if (name == name_) return;
    name_ = name;
    lookUpContent();
}

void ExportVC::lookUpContent() {
    if (kind_.isEmpty() || name_.isEmpty() || phase_ != Idle) return;
    initWithContnt(ExportContent::find(kind_, name_));
}

void ExportVC::initWithContnt(const ExportContent& content) {
    content_ = content;
    // Given the item itself (the command line), the view still learns its kind.
    if (content.kind != ExportKind::None) {
        kind_ = content.kindName();
        name_ = QString::fromStdString(content.name());
    }
    includePhotos_ = true;
    repeats_ = 1;
    format_ = 0;
    curTact_ = 0;
    loopEnded_ = false;
    video_ = content.kind == ExportKind::Track;
    toMail_ = content.kind != ExportKind::Track;
    if (content.kind == ExportKind::LoopFolder) qlog("LoopFolder");
    loopView_->changeInstrumentsForNewLoop(content.kind == ExportKind::Loop ? content.loop : nullptr);
    loopView_->refreshAllPhotos(includePhotos_);
    emit contentChanged();
    emit optionsChanged();
}

QString ExportVC::fileName() const {
    switch (content_.kind) {
    case ExportKind::Sound: return QString::fromStdString(Filer::wavf(content_.sound->name()));
    case ExportKind::SoundFolder:
        return tr8("%d files").replace("%d", QString::number(content_.folderSounds().size()));
    case ExportKind::Loop:
    case ExportKind::Track: return QString::fromStdString(content_.name());
    default: break;
    }
    return {};
}

QString ExportVC::fileIcon() const {
    if (content_.kind == ExportKind::Sound) return QStringLiteral("fileIcon");
    if (content_.kind == ExportKind::SoundFolder)
        return content_.folderSounds().size() < 2 ? QStringLiteral("fileIcon") : QStringLiteral("filesIcon");
    return {};
}

QString ExportVC::sizeText() const {
    if (content_.kind != ExportKind::Sound && content_.kind != ExportKind::SoundFolder) return {};
    return fileSizeText(exportFileBytes(content_));
}

bool ExportVC::offersExport() const {
    switch (content_.kind) {
    case ExportKind::Sound:
    case ExportKind::Loop:
    case ExportKind::Track: return true;
    case ExportKind::SoundFolder: return !content_.folderSounds().empty();
    default: break;
    }
    return false;
}

QVariantList ExportVC::trackColors() const {
    QVariantList colors;
    if (content_.kind == ExportKind::Track)
        for (TrackLoop* row : content_.track->trackloops())
            if (row) colors << int(row->color());
    return colors;
}

int ExportVC::mainColorNumber() const {
    if (content_.kind == ExportKind::Sound) return content_.sound->color();
    if (content_.kind == ExportKind::Track && !content_.track->trackloops().empty())
        return content_.track->trackloops().front()->color();
    return 0;
}

// ---- settings controls ---------------------------------------------------

int ExportVC::repeatsIndex() const {
    switch (repeats_) {
    case 1: return 0;
    case 2: return 1;
    case 4: return 2;
    default: return 3;
    }
}

QString ExportVC::saveTitle() const { return video_ ? tr8("Save to media") : tr8("Make a sound"); }

bool ExportVC::saveOrSendVisible() const {
    if (content_.kind == ExportKind::Track) return video_;
    return content_.kind == ExportKind::Loop;
}

void ExportVC::audioVideoChanged(int index) {
    video_ = index == 1;
    emit optionsChanged();
}

void ExportVC::repeatsChanged(int index) {
    static const int kRepeats[] = {1, 2, 4, 8};
    if (index < 0 || index > 3) return;
    repeats_ = kRepeats[index];
    emit optionsChanged();
}

void ExportVC::attachPhotosChanged(int index) {
    includePhotos_ = index == 0;
    if (content_.kind == ExportKind::Loop) loopView_->refreshAllPhotos(includePhotos_);
    emit optionsChanged();
}

void ExportVC::formatChanged(int index) {
    if (index < 0 || index > 2) return;
    format_ = index;
    emit optionsChanged();
}

void ExportVC::saveOrSendChanged(int index) {
    toMail_ = index == 1;
    emit optionsChanged();
}

void ExportVC::settingsPressed() {
    if (phase_ != Idle || !offersExport()) return;
    settingsShown_ = true;
    emit stateChanged();
}

void ExportVC::okSettingsPressed() {
    settingsShown_ = false;
    emit stateChanged();
}

void ExportVC::setFilmedItem(QQuickItem* item) {
    if (item == filmedItem_) return;
    filmedItem_ = item;
    emit filmedItemChanged();
}

// ---- the send flow -------------------------------------------------------

void ExportVC::later(int ms, std::function<void()> task) {
    const uint64_t generation = generation_;
    auto guarded = [this, generation, task = std::move(task)] {
        if (generation == generation_) task();
    };
    if (scheduler_) scheduler_(ms, std::move(guarded));
    else QTimer::singleShot(ms, this, std::move(guarded));
}

void ExportVC::setPhase(Phase phase) {
    if (phase == phase_) return;
    phase_ = phase;
    emit stateChanged();
}

void ExportVC::setProgress(double p) {
    progress_ = p;
    emit progressChanged();
}

void ExportVC::sendPressed() {
    if (phase_ != Idle || !offersExport()) return;
    settingsShown_ = false;
    if (!content_.rendered()) {
        sendMail();
        return;
    }
    AppDelegate* app = AppDelegate::shared();
    if (!app) return;
    curTact_ = 0;
    loopEnded_ = false;
    setProgress(0.0);
    setPhase(Capturing);
    if (video_) renderedImg_ = snapshotOrPlaceholder();
    app->beginRecordingInput(false, true, true);
    if (app->recorder) RecorderStartRecording(app->recorder.get());
    later(kLeadInMs, [this] { startPlayback(); });
}

QImage ExportVC::snapshotOrPlaceholder() const {
    QImage image = filmedItem_ ? ViewRecorder::imageFromView(filmedItem_) : QImage();
    if (!image.isNull()) return image;
    // Nothing on screen to film (no window): a plain picture of the format's size.
    const QRectF frame = Framr::ffExportLoopAllInstrV(format_);
    image = QImage(frame.size().toSize(), QImage::Format_ARGB32_Premultiplied);
    const Color c = Colorer::colorForNumber(mainColorNumber());
    image.fill(QColor::fromRgbF(float(std::min(1.0, c.r)), float(std::min(1.0, c.g)), float(std::min(1.0, c.b))));
    return image;
}

void ExportVC::startPlayback() {
    if (phase_ != Capturing) return;
    AppDelegate* app = AppDelegate::shared();
    if (!app) return;
    if (content_.kind == ExportKind::Loop) {
        Loop* loop = content_.loop;
        loopBridge_ = std::make_unique<LoopplayerMainThreadDelegate>(app->audioController(),
                                                                      static_cast<LoopplayerDelegate*>(this));
        loopplayer_ = Loopplayer::create(loop, loopBridge_.get(), static_cast<uint64_t>(repeats_), float(loop->bpm()));
        bool sounds = false;
        for (int slot = 0; slot < Loopplayer::kSlots; ++slot) sounds = sounds || loopplayer_->channelAtIndex(slot);
        if (!sounds) {
            // No sound could be loaded: nothing will ever report the end.
            qlog("Export: the loop \"%s\" has no sound to play", loop->name().c_str());
            return loopEndRepeating();
        }
        // Without a view to film (headless) there is no recorder at all: one
        // that never filmed would still write its empty movie to the file the
        // still picture's movie is written to, racing it.
        if (QQuickItem* view = filmedItem_; video_ && view) {
            viewRecorder_ = std::make_unique<ViewRecorder>(QSizeF(view->width(), view->height()), float(loop->bpm()), this);
            viewRecorder_->startRecordingView(view, [this](const QUrl& url) {
                qlog("DONE WITH OUTPUT: %s", url.isEmpty() ? "(null)" : url.toString().toUtf8().constData());
                const std::string path = Filer::pathToTemporaryDocument(Filer::kTempGlvidName);
                qlog("file exist at path %s = %d", path.c_str(), QFile::exists(QString::fromStdString(path)) ? 1 : 0);
                viewRecorderCompletion();
            });
        }
    } else {
        trackBridge_ = std::make_unique<TrackplayerMainThreadDelegate>(app->audioController(),
                                                                        static_cast<TrackplayerDelegate*>(this));
        trackplayer_ = Trackplayer::create(content_.track, trackBridge_.get(), 0, false);
    }
}

void ExportVC::animateTact(uint16_t) {
    ++curTact_;
    // Every instrument channel reports each step: the bar fills only for a
    // loop of eight instruments, as it always has.
    setProgress(double(curTact_) / double(repeats_ * 128));
}

void ExportVC::animateStartPlaying(int slot) { loopView_->setTileSounding(slot, true); }
void ExportVC::animateStopPlaying(int slot) { loopView_->setTileSounding(slot, false); }

void ExportVC::animatePlayingTact(uint16_t) {
    ++curTact_;
    const int squares = content_.kind == ExportKind::Track ? std::max<int>(1, content_.track->squaresnum()) : 1;
    setProgress(double(curTact_) / double(squares * 16));
}

void ExportVC::trackFinishd() { loopEndRepeating(); }

void ExportVC::loopEndRepeating() {
    if (loopEnded_ || phase_ != Capturing) return;
    loopEnded_ = true;
    setProgress(1.0);
    endRecordAndTrim();
}

void ExportVC::endRecordAndTrim() {
    setPhase(Finishing);
    if (viewRecorder_) viewRecorder_->stop();
    loopView_->stopAllSounding();
    if (AppDelegate* app = AppDelegate::shared()) app->endRecording();
    {
        auto trimmer = Autotrimmer::initForExport();
        trimmer->autoTrimBeginAndEnd(!video_);
        trimmer->releaseAutotrimmr();
    }
    if (!video_) return saveOrSend();
    if (content_.kind == ExportKind::Track) return makeStillMovie();
    // A loop video goes on when the view recorder's movie is written; without
    // a view to film there is none, so the still picture stands in.
    if (!viewRecorder_ || !viewRecorder_->sourceView) makeStillMovie();
}

void ExportVC::saveOrSend() {
    if (!outputFile_.isEmpty()) return copyToOutputFile(Filer::pathToTemporaryDocument(Filer::kTempRecordingName));
    if (!toMail_ && content_.kind != ExportKind::Track) return saveLoopAsSound();
    sendMail();
}

void ExportVC::saveLoopAsSound() {
    Sound* sound = saveRecordingAsRenderedSound(content_.name());
    shoeResult(sound ? tr8("Sound's saved") : tr8("Sound's not saved"));
}

void ExportVC::makeStillMovie() {
    QImage image = renderedImg_.isNull() ? snapshotOrPlaceholder() : renderedImg_;
    movieMaker_ = std::make_unique<MovieMaker>(
        MovieMaker::videoSettingsWithCodec(kVideoCodecH264, image.width(), image.height()));
    const uint64_t generation = generation_;
    movieMaker_->createMovieFromImages({image}, [this, generation](const QUrl&) {
        if (generation == generation_) addAudioToVideo();
    });
}

void ExportVC::viewRecorderCompletion() {
    qlog("viewRecorderCompletion");
    addAudioToVideo();
}

void ExportVC::addAudioToVideo() {
    audioAdder_ = std::make_unique<AudioToVideoAdder>(this);
    audioAdder_->addAudioToVideo();
}

void ExportVC::percentComplete(float fraction) {
    if (phase_ == Finishing) setProgress(fraction);
}

void ExportVC::audioAddedToVideo() {
    if (phase_ != Finishing) return;
    if (!outputFile_.isEmpty()) return copyToOutputFile(Filer::pathToTemporaryDocument(Filer::kTempAudvidName));
    if (toMail_) sendMail();
    else saveVideo();
}

QString ExportVC::videosFolder() {
    if (!videosFolderOverride().isEmpty()) return videosFolderOverride();
    return QDir(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation)).filePath(QStringLiteral("Quillo"));
}

void ExportVC::setVideosFolder(const QString& folder) { videosFolderOverride() = folder; }

void ExportVC::saveVideo() {
    const QString from = QString::fromStdString(Filer::pathToTemporaryDocument(Filer::kTempAudvidName));
    const QDir folder(videosFolder());
    QString error;
    QString stem = QString::fromStdString(content_.name());
    stem.replace(QLatin1Char('/'), QLatin1Char('_'));
    QString to = folder.filePath(stem + ".mov");
    for (int n = 2; QFile::exists(to); ++n) to = folder.filePath(QStringLiteral("%1 %2.mov").arg(stem).arg(n));
    if (!QFile::exists(from)) error = QStringLiteral("the movie was not made");
    else if (!QDir().mkpath(folder.path())) error = QStringLiteral("cannot create %1").arg(folder.path());
    else if (!QFile::copy(from, to)) error = QStringLiteral("cannot write %1").arg(to);
    if (!error.isEmpty()) {
        qlog("Error copying video to camera roll:%s", error.toUtf8().constData());
        return shoeResult(tr8("Video's not saved"));
    }
    shoeResult(tr8("Video's saved"));
}

void ExportVC::copyToOutputFile(const std::string& from) {
    QFile::remove(outputFile_);
    const bool copied = QFile::copy(QString::fromStdString(from), outputFile_);
    if (!copied) qlog("Error: cannot write %s", outputFile_.toUtf8().constData());
    shoeResult(copied ? tr8("File's saved") : tr8("File's not saved"));
}

// ---- mail ----------------------------------------------------------------

void ExportVC::sendMail() {
    setPhase(Composing);
    MailAccount account = account_;
    if (!accountGiven_) {
        AppDelegate* app = AppDelegate::shared();
        if (app && app->settings()) account = MailAccount::load(*app->settings());
    }
    if (!account.isSetUp()) {
        qlog("Warning: set up mail app");
        if (!mailTo_.isEmpty()) shoeResult(tr8("Mail's not sent"));  // the command line cannot wait for a person
        return;
    }
    MailMessage message;
    message.subject = exportMailSubject(content_, video_);
    message.body = exportMailBody();
    message.attachments = exportMailAttachments(content_, video_, includePhotos_);
    composer_ = new MailComposer(account, std::move(message), this);
    connect(composer_, &MailComposer::finished, this, &ExportVC::mailFinished);
    emit stateChanged();
    if (!mailTo_.isEmpty()) {
        composer_->setTo(mailTo_);
        composer_->send();
    }
}

void ExportVC::mailFinished(int result) {
    QString text;
    switch (result) {
    case MailComposer::Cancelled: text = tr8("Mail cancelled"); break;
    case MailComposer::Saved: text = tr8("Mail's saved"); break;
    case MailComposer::Sent: text = tr8("Mail sent"); break;
    case MailComposer::Failed: text = tr8("Mail failed"); break;
    default: text = tr8("Mail's not sent"); break;
    }
    if (composer_) composer_->deleteLater();
    composer_ = nullptr;
    shoeResult(text);
}

void ExportVC::shoeResult(const QString& text) {
    resultText_ = text;
    setPhase(Result);
    emit stateChanged();
    emit resultShown(text);
    // The view fades the label in over 0.3 s and out after 0.6 s; the screen closes after 0.9 s.
    later(kResultCloseMs, [this] { cancelPressed(); });
}

void ExportVC::cancelPressed() {
    if (phase_ == Closed) return;
    ++generation_;
    if (trackplayer_) trackplayer_->setPausd(true);
    if (loopplayer_) Loopplayer::stopLoop(loopplayer_);
    loopplayer_.reset();
    if (trackplayer_) Trackplayer::stopTrack(trackplayer_);
    trackplayer_.reset();
    loopBridge_.reset();
    trackBridge_.reset();
    if (AppDelegate* app = AppDelegate::shared()) app->endRecording();
    movieMaker_.reset();
    if (viewRecorder_) {
        viewRecorder_->cancelViewRecorder();
        if (viewRecorder_->writer) viewRecorder_->writer->setDelegate(nullptr);
        viewRecorder_.reset();
    }
    audioAdder_.reset();
    loopView_->stopAllSounding();
    if (composer_) composer_->deleteLater();
    composer_ = nullptr;
    Filer::removeTempRecordingsFile();
    setPhase(Closed);
    emit removeExportVC();
}
