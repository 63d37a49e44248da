#pragma once
// The settings screen: the artist name written into new items, the mail
// account Quillo sends through (its password goes to the desktop keyring,
// never to the settings file), and the audio devices with the buffer size.
// Nothing changes until `save`; a rule that is broken is named in `problem`.
#include <QObject>
#include <algorithm>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class QSettings;

class SettingsVC : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString artistName MEMBER artistName NOTIFY changed)
    Q_PROPERTY(QString mailServer MEMBER mailServer NOTIFY changed)
    Q_PROPERTY(int mailPort MEMBER mailPort NOTIFY changed)
    // 0 TLS, 1 STARTTLS, 2 none (only to this machine)
    Q_PROPERTY(int mailSecurity MEMBER mailSecurity NOTIFY changed)
    Q_PROPERTY(QString mailUser MEMBER mailUser NOTIFY changed)
    Q_PROPERTY(QString mailFrom MEMBER mailFrom NOTIFY changed)
    Q_PROPERTY(QString mailPassword MEMBER mailPassword NOTIFY changed)
    Q_PROPERTY(QStringList outputDevices READ outputDevices CONSTANT)
    Q_PROPERTY(QStringList inputDevices READ inputDevices CONSTANT)
    Q_PROPERTY(QString outputDevice MEMBER outputDevice NOTIFY changed)
    Q_PROPERTY(QString inputDevice MEMBER inputDevice NOTIFY changed)
    Q_PROPERTY(int bufferFrames MEMBER bufferFrames NOTIFY changed)
    Q_PROPERTY(int indexOfOutputDevice READ indexOfOutputDevice NOTIFY changed)
    Q_PROPERTY(int indexOfInputDevice READ indexOfInputDevice NOTIFY changed)
    // What the engine plays through now, and with which buffer.
    Q_PROPERTY(QString audioNow READ audioNow NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(QString status READ status NOTIFY changed)

public:
    static constexpr const char* kDefaultDevice = "Default";

    // Reads the application's settings (or `settings` in tests).
    explicit SettingsVC(QObject* parent = nullptr);
    SettingsVC(QSettings* settings, QObject* parent = nullptr);

    QString artistName, mailServer, mailUser, mailFrom, mailPassword, outputDevice, inputDevice;
    int mailPort = 587, mailSecurity = 1, bufferFrames = 256;

    QStringList outputDevices() const { return outputDevices_; }
    QStringList inputDevices() const { return inputDevices_; }
    int indexOfOutputDevice() const { return std::max<int>(0, int(outputDevices_.indexOf(outputDevice))); }
    int indexOfInputDevice() const { return std::max<int>(0, int(inputDevices_.indexOf(inputDevice))); }
    QString audioNow() const;
    QString problem() const { return problem_; }
    QString status() const { return status_; }

    // Checks the rules, then writes the settings and (if typed) the password
    // to the keyring. False, with `problem` set, when a rule is broken.
    Q_INVOKABLE bool save();

signals:
    void changed();
    void saved();

private:
    void load();
    void listDevices();
    QSettings* settings_;
    QStringList outputDevices_, inputDevices_;
    QString problem_, status_;
};
