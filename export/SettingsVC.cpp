#include "export/SettingsVC.h"

#include <QPointer>
#include <QSettings>
#include <cmath>

#include "app/AppDelegate.h"
#include "app/AudioSettings.h"
#include "engine/AudioDevices.h"
#include "export/mail/Keyring.h"
#include "export/mail/MailAccount.h"
#include "library/text/Localized.h"

SettingsVC::SettingsVC(QObject* parent)
    : SettingsVC(AppDelegate::shared() ? AppDelegate::shared()->settings() : nullptr, parent) {}

SettingsVC::SettingsVC(QSettings* settings, QObject* parent) : QObject(parent), settings_(settings) {
    load();
    listDevices();
}

void SettingsVC::load() {
    if (AppDelegate* app = AppDelegate::shared()) artistName = QString::fromStdString(app->usersArtistName);
    if (!settings_) return;
    if (!AppDelegate::shared()) artistName = settings_->value("usersArtistName").toString();
    const MailAccount a = MailAccount::load(*settings_);
    mailServer = a.server;
    mailPort = a.port;
    mailSecurity = a.security == MailAccount::Security::Tls ? 0 : a.security == MailAccount::Security::None ? 2 : 1;
    mailUser = a.userName;
    mailFrom = a.fromAddress;
    const AudioDeviceChoice audio = audiosettings::load(*settings_);
    outputDevice = audiosettings::deviceLabel(audio.outputDevice);
    inputDevice = audiosettings::deviceLabel(audio.inputDevice);
    bufferFrames = int(audio.framesPerBuffer);
}

void SettingsVC::listDevices() {
    outputDevices_ = inputDevices_ = QStringList{kDefaultDevice};
    // Without a sound card in use (the silent or offline engine) there is nothing to probe.
    const QByteArray audio = qgetenv("QUILLO_AUDIO");
    if (audio != "null" && audio != "offline") {
        const AudioDeviceNames names = listAudioDevices();
        for (const std::string& name : names.outputs) outputDevices_ << QString::fromStdString(name);
        for (const std::string& name : names.inputs) inputDevices_ << QString::fromStdString(name);
    }
    // A saved device that is not plugged in stays choosable: the engine
    // uses the default one meanwhile.
    if (!outputDevices_.contains(outputDevice)) outputDevices_ << outputDevice;
    if (!inputDevices_.contains(inputDevice)) inputDevices_ << inputDevice;
}

QString SettingsVC::audioNow() const {
    AppDelegate* app = AppDelegate::shared();
    const AudioController* engine = app ? app->audioController() : nullptr;
    if (!engine || !engine->running()) return tr("Sound is off");
    const double seconds = engine->preferredBufferDuration();
    const QString buffer = tr("%1 frames, %2 ms")
                               .arg(std::lround(seconds * engine->audioDescription().mSampleRate))
                               .arg(seconds * 1000.0, 0, 'f', 1);
    const QString driver = QString::fromUtf8(engine->driverName());
    if (driver == "PortAudio") return tr("Playing through the sound card (%1)").arg(buffer);
    if (driver == "Null") return tr("No sound card: playing silently (%1)").arg(buffer);
    return tr("Rendering offline");
}

bool SettingsVC::save() {
    MailAccount account;
    account.server = mailServer.trimmed();
    account.port = mailPort;
    account.security = mailSecurity == 0   ? MailAccount::Security::Tls
                       : mailSecurity == 2 ? MailAccount::Security::None
                                           : MailAccount::Security::StartTls;
    account.userName = mailUser.trimmed();
    account.fromAddress = mailFrom.trimmed();
    problem_.clear();
    if (!account.server.isEmpty() && !account.securityAllowed())
        problem_ = tr("Without TLS or STARTTLS mail only goes to a server on this machine");
    else if (account.port < 1 || account.port > 65535) problem_ = tr("The port is a number from 1 to 65535");
    else if (bufferFrames < int(AudioDeviceChoice::kMinFrames) || bufferFrames > int(AudioDeviceChoice::kMaxFrames))
        problem_ = tr("The buffer is 32 to 4096 frames");
    if (!problem_.isEmpty()) {
        emit changed();
        return false;
    }
    if (AppDelegate* app = AppDelegate::shared()) {
        app->usersArtistName = artistName.trimmed().toStdString();
        app->saveState();
    } else if (settings_) {
        settings_->setValue("usersArtistName", artistName.trimmed());
    }
    if (settings_) {
        account.save(*settings_);
        audiosettings::save(*settings_, {audiosettings::deviceName(outputDevice), audiosettings::deviceName(inputDevice),
                                         uint32_t(bufferFrames)});
        settings_->sync();
    }
    // The engine reopens the device at once; a loop that plays goes on.
    if (AppDelegate* app = AppDelegate::shared(); app && settings_ == app->settings()) app->applyAudioSettings();
    status_ = tr("Saved");
    if (!mailPassword.isEmpty()) {
        QPointer<SettingsVC> self(this);
        keyring::writePassword(keyring::passwordKey(account.userName, account.server), mailPassword,
                               [self](bool stored, const QString&) {
                                   if (!self) return;
                                   self->status_ = stored ? tr("Saved; the password is in the keyring")
                                                          : tr("Saved; no keyring, the password is asked for when sending");
                                   emit self->changed();
                               });
        mailPassword.clear();
    }
    emit changed();
    emit saved();
    return true;
}
