#pragma once
// The export screen's controller: shares one library item. A sound or a
// sound folder goes by mail with its WAV files (and photos); a loop is played
// in real time while the engine's output is recorded, trimmed and then saved
// as a sound in "Rendered loops" or mailed; a loop's grid or a track's picture
// is filmed and joined with the recorded audio, then saved to the Videos
// folder or mailed. The view (ExportView.qml) only draws what this decides.
//
// Main thread. Player reports reach it through the main-thread bridges.
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <memory>

#include "export/ExportContent.h"
#include "export/mail/MailAccount.h"
#include "export/mail/MailComposer.h"
#include "export/movie/AudioToVideoAdder.h"
#include "export/movie/ViewRecorderAssetWriter.h"
#include "playback/PlayerDelegates.h"
#include "screens/loopeditor/LoopView.h"

class AppDelegate;
class Autotrimmer;
class Loopplayer;
class LoopplayerMainThreadDelegate;
class MovieMaker;
class Trackplayer;
class TrackplayerMainThreadDelegate;
class ViewRecorder;

class ExportVC : public QObject,
                 public LoopplayerDelegate,
                 public TrackplayerDelegate,
                 public ViewRecorderAssetWriterDelegate,
                 public AudioToVideoAdderDelegate {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY contentChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY contentChanged)
    Q_PROPERTY(QString fileName READ fileName NOTIFY contentChanged)
    Q_PROPERTY(QString fileIcon READ fileIcon NOTIFY contentChanged)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY contentChanged)
    Q_PROPERTY(bool offersExport READ offersExport NOTIFY contentChanged)
    // A track's rows, by colour number, for its still picture.
    Q_PROPERTY(QVariantList trackColors READ trackColors NOTIFY contentChanged)
    // A loop's grid, pulsing with the loop while it is captured: what a loop video films.
    Q_PROPERTY(LoopView* loopView READ loopView CONSTANT)
    Q_PROPERTY(int mainColorNumber READ mainColorNumber NOTIFY contentChanged)

    Q_PROPERTY(bool includePhotos READ includePhotos NOTIFY optionsChanged)
    Q_PROPERTY(bool toMail READ toMail NOTIFY optionsChanged)
    Q_PROPERTY(bool video READ video NOTIFY optionsChanged)
    Q_PROPERTY(int repeats READ repeats NOTIFY optionsChanged)
    Q_PROPERTY(int format READ format NOTIFY optionsChanged)
    Q_PROPERTY(int repeatsIndex READ repeatsIndex NOTIFY optionsChanged)
    Q_PROPERTY(QString saveTitle READ saveTitle NOTIFY optionsChanged)
    Q_PROPERTY(bool audioVideoVisible READ audioVideoVisible NOTIFY contentChanged)
    Q_PROPERTY(bool repeatsVisible READ repeatsVisible NOTIFY contentChanged)
    Q_PROPERTY(bool formatVisible READ formatVisible NOTIFY optionsChanged)
    Q_PROPERTY(bool saveOrSendVisible READ saveOrSendVisible NOTIFY optionsChanged)
    Q_PROPERTY(bool settingsShown READ settingsShown NOTIFY stateChanged)

    Q_PROPERTY(Phase phase READ phase NOTIFY stateChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString resultText READ resultText NOTIFY stateChanged)
    Q_PROPERTY(MailComposer* composer READ composer NOTIFY stateChanged)
    // The picture a video films: the loop's grid or the track's picture.
    Q_PROPERTY(QQuickItem* filmedItem READ filmedItem WRITE setFilmedItem NOTIFY filmedItemChanged)

public:
    enum Phase { Idle, Capturing, Finishing, Composing, Result, Closed };
    Q_ENUM(Phase)
    static constexpr int kLeadInMs = 360;
    static constexpr int kResultFadeOutMs = 600;
    static constexpr int kResultCloseMs = 900;

    explicit ExportVC(QObject* parent = nullptr);
    ~ExportVC() override;

    QString kind() const { return kind_; }
    void setKind(const QString& kind);
    QString name() const { return name_; }
    void setName(const QString& name);
    // The item shown: the defaults (a track starts as a video saved to the Videos folder).
    void initWithContnt(const ExportContent& content);
    const ExportContent& content() const { return content_; }

    QString fileName() const;
    QString fileIcon() const;
    QString sizeText() const;
    bool offersExport() const;
    QVariantList trackColors() const;
    int mainColorNumber() const;

    bool includePhotos() const { return includePhotos_; }
    bool toMail() const { return toMail_; }
    bool video() const { return video_; }
    int repeats() const { return repeats_; }
    int format() const { return format_; }
    int repeatsIndex() const;
    QString saveTitle() const;
    bool audioVideoVisible() const { return content_.rendered(); }
    bool repeatsVisible() const { return content_.kind == ExportKind::Loop; }
    bool formatVisible() const { return content_.rendered() && video_; }
    bool saveOrSendVisible() const;
    bool settingsShown() const { return settingsShown_; }

    // The settings controls, by segment index.
    Q_INVOKABLE void audioVideoChanged(int index);
    Q_INVOKABLE void repeatsChanged(int index);
    Q_INVOKABLE void attachPhotosChanged(int index);
    Q_INVOKABLE void formatChanged(int index);
    Q_INVOKABLE void saveOrSendChanged(int index);
    Q_INVOKABLE void settingsPressed();
    Q_INVOKABLE void okSettingsPressed();
    Q_INVOKABLE void sendPressed();
    Q_INVOKABLE void cancelPressed();

    Phase phase() const { return phase_; }
    double progress() const { return progress_; }
    QString resultText() const { return resultText_; }
    MailComposer* composer() const { return composer_; }
    QQuickItem* filmedItem() const { return filmedItem_; }
    LoopView* loopView() const { return loopView_; }
    void setFilmedItem(QQuickItem* item);
    int curTact() const { return curTact_; }

    // Player reports (on the main thread, through the bridges).
    void animateTact(uint16_t step) override;
    void animateStartPlaying(int slot) override;
    void animateStopPlaying(int slot) override;
    void loopEndRepeating() override;
    void animatePlayingSquare(uint16_t) override {}
    void animatePlayingTact(uint16_t step) override;
    void trackFinishd() override;
    // Movie writing.
    void percentComplete(float fraction) override;
    void audioAddedToVideo() override;

    // Delays (the 0.36 s lead-in, the result's timers) go through this; tests
    // hand in their own to run them when the audio they wait for is rendered.
    using Scheduler = std::function<void(int milliseconds, std::function<void()> task)>;
    void setScheduler(Scheduler scheduler) { scheduler_ = std::move(scheduler); }
    // The command line: instead of saving or mailing, the WAV or the movie is
    // copied to this file.
    void setOutputFile(const QString& path) { outputFile_ = path; }
    // The command line: the composer is sent at once to this address.
    void setMailTo(const QString& address) { mailTo_ = address; }
    // The mail account (by default read from the settings when a mail is composed).
    void setMailAccount(const MailAccount& account) { account_ = account; accountGiven_ = true; }

    // Where saved videos go: the Videos folder's "Quillo" (tests point it elsewhere).
    static QString videosFolder();
    static void setVideosFolder(const QString& folder);

signals:
    void contentChanged();
    void optionsChanged();
    void stateChanged();
    void progressChanged();
    void filmedItemChanged();
    // The screen is done; its owner takes it away.
    void removeExportVC();
    void resultShown(const QString& text);

private:
    void lookUpContent();
    void setPhase(Phase phase);
    void setProgress(double p);
    void startPlayback();
    void endRecordAndTrim();
    void saveOrSend();
    void saveLoopAsSound();
    void makeStillMovie();
    void viewRecorderCompletion();
    void addAudioToVideo();
    void saveVideo();
    void copyToOutputFile(const std::string& from);
    void sendMail();
    void mailFinished(int result);
    void shoeResult(const QString& text);
    void later(int ms, std::function<void()> task);
    QImage snapshotOrPlaceholder() const;

    QString kind_, name_;
    ExportContent content_;
    bool includePhotos_ = true;
    bool toMail_ = true;
    int repeats_ = 1;
    bool video_ = false;
    int format_ = 0;
    int curTact_ = 0;
    bool loopEnded_ = false;
    bool settingsShown_ = false;
    Phase phase_ = Idle;
    double progress_ = 0.0;
    QString resultText_;
    QImage renderedImg_;
    QPointer<QQuickItem> filmedItem_;
    LoopView* loopView_;  // child
    QPointer<MailComposer> composer_;
    std::shared_ptr<Loopplayer> loopplayer_;
    std::shared_ptr<Trackplayer> trackplayer_;
    std::unique_ptr<LoopplayerMainThreadDelegate> loopBridge_;
    std::unique_ptr<TrackplayerMainThreadDelegate> trackBridge_;
    std::unique_ptr<ViewRecorder> viewRecorder_;
    std::unique_ptr<MovieMaker> movieMaker_;
    std::unique_ptr<AudioToVideoAdder> audioAdder_;
    Scheduler scheduler_;
    uint64_t generation_ = 0;  // bumps on cancel: a delayed task of an earlier run does nothing
    QString outputFile_, mailTo_;
    MailAccount account_;
    bool accountGiven_ = false;
};
