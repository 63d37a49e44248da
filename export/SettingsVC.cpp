#include "export/SettingsVC.h"

#include <portaudio.h>

#include <QPointer>
#include <QSettings>

#include "app/AppDelegate.h"
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
    outputDevice = settings_->value("audio/outputDevice", kDefaultDevice).toString();
    inputDevice = settings_->value("audio/inputDevice", kDefaultDevice).toString();
    bufferFrames = settings_->value("audio/bufferFrames", 256).toInt();
}

void SettingsVC::listDevices() {
    outputDevices_ = inputDevices_ = QStringList{kDefaultDevice};
    // Without a sound card in use (the silent or offline engine) there is nothing to choose.
    const QByteArray audio = qgetenv("QUILLO_AUDIO");
    if (audio == "null" || audio == "offline") return;
    if (Pa_Initialize() != paNoError) return;
    for (PaDeviceIndex i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (!info) continue;
        if (info->maxOutputChannels > 0) outputDevices_ << QString::fromUtf8(info->name);
        if (info->maxInputChannels > 0) inputDevices_ << QString::fromUtf8(info->name);
    }
    Pa_Terminate();
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
    else if (bufferFrames < 32 || bufferFrames > 8192) problem_ = tr("The buffer is 32 to 8192 frames");
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
        settings_->setValue("audio/outputDevice", outputDevice);
        settings_->setValue("audio/inputDevice", inputDevice);
        settings_->setValue("audio/bufferFrames", bufferFrames);
        settings_->sync();
    }
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
