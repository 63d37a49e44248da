#include "export/mail/MailComposer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>

#include "export/ExportContent.h"
#include "export/mail/Keyring.h"
#include "export/mail/SmtpSender.h"
#include "library/media/Filer.h"
#include "library/util/Log.h"

MailComposer::MailComposer(MailAccount account, MailMessage message, QObject* parent)
    : QObject(parent), account_(std::move(account)), message_(std::move(message)) {
    if (message_.from.isEmpty()) message_.from = account_.sender();
    if (!account_.userName.isEmpty() && account_.password.isEmpty()) {
        passwordPending_ = true;
        QPointer<MailComposer> self(this);
        keyring::readPassword(keyring::passwordKey(account_.userName, account_.server),
                              [self](bool found, const QString& password) {
                                  if (!self) return;
                                  self->passwordPending_ = false;
                                  if (found && self->account_.password.isEmpty()) self->account_.password = password;
                                  self->needsPassword_ = self->account_.password.isEmpty();
                                  emit self->changed();
                              });
    }
}

MailComposer::~MailComposer() {
    if (sender_.joinable()) sender_.join();
}

void MailComposer::setTo(const QString& to) {
    QStringList list;
    for (const QString& part : to.split(QLatin1Char(','), Qt::SkipEmptyParts))
        if (!part.trimmed().isEmpty()) list << part.trimmed();
    if (list == message_.to) return;
    message_.to = list;
    emit changed();
}

void MailComposer::setSubject(const QString& s) {
    if (s == message_.subject) return;
    message_.subject = s;
    emit changed();
}

void MailComposer::setBody(const QString& b) {
    if (b == message_.body) return;
    message_.body = b;
    emit changed();
}

void MailComposer::setPassword(const QString& p) {
    if (p == account_.password) return;
    account_.password = p;
    emit changed();
}

QVariantList MailComposer::attachments() const {
    QVariantList list;
    for (const MailAttachment& a : message_.attachments)
        list << QVariantMap{{"fileName", a.fileName}, {"mimeType", a.mimeType}, {"size", fileSizeText(a.data.size())}};
    return list;
}

void MailComposer::setProblem(const QString& text) {
    problem_ = text;
    emit changed();
}

void MailComposer::send() {
    if (done_ || sending_) return;
    if (message_.to.isEmpty()) return setProblem(tr("Who is it for?"));
    for (const QString& address : message_.to)
        if (!looksLikeAddress(address)) return setProblem(tr("\"%1\" is not a mail address").arg(address));
    if (!account_.userName.isEmpty() && account_.password.isEmpty()) {
        needsPassword_ = true;
        return setProblem(passwordPending_ ? tr("Reading the password from the keyring") : tr("Enter the password"));
    }
    sending_ = true;
    problem_.clear();
    emit changed();
    if (sender_.joinable()) sender_.join();
    QPointer<MailComposer> self(this);
    sender_ = std::thread([self, account = account_, message = message_] {
        const SmtpOutcome outcome = sendMailOverSmtp(account, message);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [self, outcome] { if (self) self->sendDone(outcome.sent, outcome.error); },
            Qt::QueuedConnection);
    });
}

void MailComposer::sendDone(bool sent, const QString& error) {
    sending_ = false;
    if (!sent) qlog("Mail: %s", error.toUtf8().constData());
    finish(sent ? Sent : Failed);
}

QString MailComposer::draftsFolder() {
    return QDir(QString::fromStdString(Filer::documentsDirectory())).filePath(QStringLiteral("Drafts"));
}

void MailComposer::saveDraft() {
    if (done_ || sending_) return;
    QDir().mkpath(draftsFolder());
    QString stem = message_.subject.isEmpty() ? QStringLiteral("Draft") : message_.subject;
    stem.replace(QRegularExpression(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f]")), QStringLiteral("_"));
    QString path = QDir(draftsFolder()).filePath(stem + ".eml");
    for (int n = 2; QFile::exists(path); ++n) path = QDir(draftsFolder()).filePath(QStringLiteral("%1 %2.eml").arg(stem).arg(n));
    QSaveFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(message_.toMime()) >= 0 && file.commit();
    if (!written) qlog("Mail: cannot write the draft %s", path.toUtf8().constData());
    finish(written ? Saved : Failed);
}

void MailComposer::cancel() {
    if (done_ || sending_) return;
    finish(Cancelled);
}

void MailComposer::finish(Result result) {
    if (done_) return;
    done_ = true;
    emit finished(result);
}
