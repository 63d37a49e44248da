#pragma once
// The mail account Quillo sends through: an SMTP server, how the connection
// is secured, and who logs in. Kept in the settings under "mail/..."; the
// password is never stored here (see Keyring) and only travels in memory.
#include <QString>

class QSettings;

struct MailAccount {
    enum class Security { Tls, StartTls, None };

    QString server;
    int port = 587;
    Security security = Security::StartTls;
    QString userName;
    QString fromAddress;  // the sender; the user name when empty
    QString password;     // in memory only
    QString caFile;       // an extra trusted certificate (a private server); empty: the system's

    // Set up enough to try sending: a server and a sender.
    bool isSetUp() const;
    QString sender() const { return fromAddress.isEmpty() ? userName : fromAddress; }
    // A plain connection is only allowed to a server on this machine.
    bool securityAllowed() const;

    // "mail/server", "mail/port", "mail/security" ("tls", "starttls", "none"),
    // "mail/user", "mail/from", "mail/caFile".
    static MailAccount load(const QSettings& settings);
    void save(QSettings& settings) const;
};

// Whether `host` names this machine: "localhost", 127.0.0.0/8 or ::1.
bool isLoopbackHost(const QString& host);
