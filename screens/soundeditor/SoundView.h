#pragma once
// The sound panel: records a new sound with the microphone or edits an
// existing one. It grows as a circle out of the control that opened it and
// holds the name and folder, the recording with its live input trace, the
// waveform and length, the preview, the automatic-trim setting, the colour
// and the photo. Done writes to the library (and the sound's files); Cancel
// writes nothing.
//
// The host (the sounds list's stand-alone screen, the loop editor) creates
// the panel, opens it with addNewSoundView or addExistingSound, and listens:
// soundWasAddedOrEdited, soundRecordingWasCancelled (new sounds only),
// removeSoundView (close the panel now), cameraOrPhotoPickerPressedOnSp.
// `finished` sums up the outcome for hosts that only need that.
//
// Main thread only. It uses the application (AppDelegate::shared()) for the
// engine, the recorder, the input trace and the preview player, and the
// store through CoreDater.
#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <memory>

#include "screens/lists/panels/NameNFlderChoosrView.h"
#include "screens/soundeditor/internal/Waveform.h"

class AppDelegate;
class Sound;
class SoundColorView;
class SoundPhotoView;

class SoundView : public NameNFlderChoosrView {
    Q_OBJECT
    QML_ELEMENT
    // The name, the folder and the folder chooser come from the
    // name-and-folder panel. What is shown besides:
    Q_PROPERTY(bool isNew READ isNew NOTIFY openedChanged)
    Q_PROPERTY(QString existingName READ existingName NOTIFY openedChanged)
    Q_PROPERTY(int colorNum READ colorNum NOTIFY colorNumChanged)
    Q_PROPERTY(QColor panelColor READ panelColor NOTIFY colorNumChanged)
    Q_PROPERTY(QColor colorButtonColor READ colorButtonColor NOTIFY colorNumChanged)
    Q_PROPERTY(QColor switchOnColor READ switchOnColor NOTIFY colorNumChanged)
    Q_PROPERTY(bool recording READ recording NOTIFY recordingChanged)
    Q_PROPERTY(bool elementsShown READ elementsShown NOTIFY recordingChanged)
    Q_PROPERTY(bool playing READ playing NOTIFY playingChanged)
    Q_PROPERTY(QString recordImage READ recordImage NOTIFY recordingChanged)
    Q_PROPERTY(QString playImage READ playImage NOTIFY playingChanged)
    Q_PROPERTY(double duration READ duration NOTIFY waveformChanged)
    Q_PROPERTY(QString durationText READ durationText NOTIFY waveformChanged)
    Q_PROPERTY(QList<qreal> waveMinima READ waveMinima NOTIFY waveformChanged)
    Q_PROPERTY(QList<qreal> waveMaxima READ waveMaxima NOTIFY waveformChanged)
    Q_PROPERTY(int waveformColumns READ waveformColumns WRITE setWaveformColumns NOTIFY waveformChanged)
    Q_PROPERTY(QList<QPointF> tracePoints READ tracePoints NOTIFY tracePointsChanged)
    Q_PROPERTY(bool autotrimRecords READ autotrimRecords WRITE setAutotrimRecords NOTIFY autotrimRecordsChanged)
    Q_PROPERTY(bool settingsShown READ settingsShown NOTIFY settingsShownChanged)
    Q_PROPERTY(QString photoPath READ photoPath NOTIFY photoChanged)
    Q_PROPERTY(int photoRevision READ photoRevision NOTIFY photoChanged)
    Q_PROPERTY(QImage photoImage READ photoImage NOTIFY photoChanged)
    Q_PROPERTY(bool hasNewPhoto READ hasNewPhoto NOTIFY photoChanged)
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged)
    Q_PROPERTY(bool closed READ closed NOTIFY removeSoundView)

public:
    static constexpr double kStartCornerKoeff = 0.3;
    static constexpr int kDefaultWaveformColumns = 312;

    explicit SoundView(QObject* parent = nullptr);
    ~SoundView() override;

    // Opening. A new sound gets the next free recorded-sound name, the folder
    // "My sounds", a random colour, and the microphone is switched on in the
    // background. An existing sound shows its name, folder, colour and
    // waveform. False when no sound has that name (nothing opens).
    static SoundView* addNewSoundViewTo(QObject* host, const QRectF& startFrame);
    static SoundView* addExistingSound(Sound* sound, QObject* host, const QRectF& startFrame);
    Q_INVOKABLE void addNewSoundView(const QRectF& startFrame);
    Q_INVOKABLE bool addExistingSound(const QString& soundName, const QRectF& startFrame);
    void openExisting(Sound* sound, const QRectF& startFrame);

    bool isNew() const { return !m_existing; }
    QString existingName() const;
    Sound* existingSound() const { return m_existing; }

    int colorNum() const { return m_colorNum; }
    QColor panelColor() const;
    QColor colorButtonColor() const;
    QColor switchOnColor() const;
    bool recording() const { return m_recording; }
    bool elementsShown() const { return m_elementsShown; }
    bool playing() const { return m_playing; }
    QString recordImage() const { return m_recording ? "stopButton" : "micButton"; }
    QString playImage() const { return m_playing ? "stopButton" : "bigPlayButton"; }
    double duration() const { return m_duration; }
    QString durationText() const;
    QList<qreal> waveMinima() const;
    QList<qreal> waveMaxima() const;
    const Waveform& waveform() const { return m_waveform; }
    int waveformColumns() const { return m_columns; }
    void setWaveformColumns(int columns);
    QList<QPointF> tracePoints() const { return m_tracePoints; }
    bool autotrimRecords() const;
    void setAutotrimRecords(bool on);
    bool settingsShown() const { return m_settingsShown; }
    QString photoPath() const;
    int photoRevision() const { return m_photoRevision; }
    // The photo through the cache; a null image when the sound has none.
    QImage photoImage() const;
    bool hasNewPhoto() const { return m_photoChanged; }
    QString lastError() const { return m_lastError; }
    bool closed() const { return m_closed; }

    // Buttons.
    Q_INVOKABLE void recordPressed();
    Q_INVOKABLE void startRecordPressed();
    Q_INVOKABLE void stopRecordPressed();
    Q_INVOKABLE void playPressed();
    Q_INVOKABLE void settingsPressed();
    Q_INVOKABLE void okSettingsPressed();
    Q_INVOKABLE void donePressed() override;
    Q_INVOKABLE void cancelPressed() override;
    // Opens the colour chooser (owned by the panel until it closes).
    Q_INVOKABLE SoundColorView* colorPressed();
    Q_INVOKABLE void colorPicked(int colorNum);
    // Opens the photo chooser with the sound's current photo.
    Q_INVOKABLE SoundPhotoView* photoPressed();
    // Writes the photo as JPEG (quality 0.85) to pathOfPhoto, refreshes the
    // photo cache and shows it.
    Q_INVOKABLE void imagePicked(const QImage& image);
    QString pathOfPhoto() const;
    SoundPhotoView* soundPhotoV() const;
    SoundColorView* soundColorV() const;

    // Redraws the waveform and the length from a file.
    void showWaveform(const QString& path);
    // True exactly when name, folder and colour are the existing sound's and
    // no photo was picked.
    bool nothingChanged() const;
    // The name and folder as they will be stored: bad characters removed, a
    // blank name "Sound", a blank folder "My sounds".
    std::string storedName() const;
    std::string storedFolderName() const;
    // Done's two paths. Both answer whether the library changed.
    bool createNewSound(Sound* source);
    bool editExistingSound();

    // The background switch of the microphone; wait blocks until it is done.
    static void switchInputInBackground(bool enabled);
    static void waitForInputSwitch();

signals:
    void openedChanged();
    void colorNumChanged();
    void recordingChanged();
    void playingChanged();
    void waveformChanged();
    void tracePointsChanged();
    void autotrimRecordsChanged();
    void settingsShownChanged();
    void photoChanged();
    void lastErrorChanged();
    // To the host.
    void soundWasAddedOrEdited(const QString& soundName);
    void soundRecordingWasCancelled();
    void removeSoundView();
    void cameraOrPhotoPickerPressedOnSp(int source);
    // The outcome, sent just before removeSoundView: "created", "edited",
    // "unchanged" or "cancelled", with the sound's name ("" when cancelled).
    void finished(const QString& result, const QString& soundName);

private:
    AppDelegate* app() const;
    void setRecording(bool recording);
    void setPlaying(bool playing);
    void addOscilloscop();
    void closingCleanUp();
    void stopPreview();
    void setError(const QString& error);
    std::string uniqueSoundName(const std::string& wanted) const;

    Sound* m_existing = nullptr;
    int m_colorNum = 0;
    bool m_photoChanged = false;
    int m_photoRevision = 0;
    double m_duration = 0;
    bool m_recording = false;
    bool m_elementsShown = false;
    bool m_playing = false;
    bool m_settingsShown = false;
    bool m_closed = false;
    bool m_inputSwitchedOn = false;
    int m_columns = kDefaultWaveformColumns;
    QString m_wavePath;
    Waveform m_waveform;
    QList<QPointF> m_tracePoints;
    QString m_lastError;
    QPointer<SoundColorView> m_soundColorV;
    QPointer<SoundPhotoView> m_soundPhotoV;
};
