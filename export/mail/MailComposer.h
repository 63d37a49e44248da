#pragma once
// Quillo's own mail composer: the recipient, subject, body and attachments
// of one message, sent over SMTP through the configured account, saved as a
// draft (.eml in the library's "Drafts" folder) or cancelled. It ends once,
// with `finished`. Sending runs on a thread of its own; the answer comes back
// on the main thread.
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <thread>

#include "export/mail/MailAccount.h"
#include "export/mail/MailMessage.h"

class MailComposer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the export screen")
    Q_PROPERTY(QString to READ to WRITE setTo NOTIFY changed)
    Q_PROPERTY(QString subject READ subject WRITE setSubject NOTIFY changed)
    Q_PROPERTY(QString body READ body WRITE setBody NOTIFY changed)
    Q_PROPERTY(QVariantList attachments READ attachments CONSTANT)
    Q_PROPERTY(QString sender READ sender CONSTANT)
    // No password from the keyring: the composer asks for it.
    Q_PROPERTY(bool needsPassword READ needsPassword NOTIFY changed)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY changed)
    Q_PROPERTY(bool sending READ sending NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    enum Result { Cancelled, Saved, Sent, Failed, NotSent };
    Q_ENUM(Result)

    // Reads the account's password from the keyring (unless it has one).
    MailComposer(MailAccount account, MailMessage message, QObject* parent = nullptr);
    ~MailComposer() override;

    QString to() const { return message_.to.join(QStringLiteral(", ")); }
    void setTo(const QString& to);
    QString subject() const { return message_.subject; }
    void setSubject(const QString& s);
    QString body() const { return message_.body; }
    void setBody(const QString& b);
    QVariantList attachments() const;
    QString sender() const { return account_.sender(); }
    bool needsPassword() const { return needsPassword_; }
    QString password() const { return account_.password; }
    void setPassword(const QString& p);
    bool sending() const { return sending_; }
    QString problem() const { return problem_; }
    const MailMessage& message() const { return message_; }

    Q_INVOKABLE void send();
    Q_INVOKABLE void saveDraft();
    Q_INVOKABLE void cancel();

    // The folder drafts are written to, in the library folder.
    static QString draftsFolder();

signals:
    void changed();
    void finished(int result);

private:
    void finish(Result result);
    void sendDone(bool sent, const QString& error);
    void setProblem(const QString& text);

    MailAccount account_;
    MailMessage message_;
    bool needsPassword_ = false;
    bool passwordPending_ = false;
    bool sending_ = false;
    bool done_ = false;
    QString problem_;
    std::thread sender_;
};
