#include "export/mail/SmtpSender.h"

#include <curl/curl.h>

#include <cstring>
#include <mutex>

namespace {

struct Upload {
    QByteArray data;
    qsizetype offset = 0;
};

size_t readPayload(char* buffer, size_t size, size_t count, void* userData) {
    auto* upload = static_cast<Upload*>(userData);
    const size_t room = size * count;
    const size_t left = static_cast<size_t>(upload->data.size() - upload->offset);
    const size_t n = left < room ? left : room;
    std::memcpy(buffer, upload->data.constData() + upload->offset, n);
    upload->offset += static_cast<qsizetype>(n);
    return n;
}

void initCurlOnce() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

}  // namespace

SmtpOutcome sendMailOverSmtp(const MailAccount& account, const MailMessage& message, int timeoutSeconds) {
    SmtpOutcome outcome;
    if (!account.isSetUp()) {
        outcome.error = QStringLiteral("no mail account is set up");
        return outcome;
    }
    if (!account.securityAllowed()) {
        outcome.error = QStringLiteral("a plain connection is only allowed to this machine; use TLS or STARTTLS");
        return outcome;
    }
    if (message.to.isEmpty()) {
        outcome.error = QStringLiteral("no recipient");
        return outcome;
    }
    initCurlOnce();
    CURL* curl = curl_easy_init();
    if (!curl) {
        outcome.error = QStringLiteral("cannot start the mail connection");
        return outcome;
    }
    const bool tls = account.security == MailAccount::Security::Tls;
    QString host = account.server.trimmed();
    if (host.contains(QLatin1Char(':')) && !host.startsWith(QLatin1Char('['))) host = "[" + host + "]";
    const QByteArray url = (QString(tls ? "smtps://" : "smtp://") + host + ":" + QString::number(account.port)).toUtf8();
    const QByteArray from = ("<" + bareAddress(account.sender()) + ">").toUtf8();
    const QByteArray user = account.userName.toUtf8();
    const QByteArray password = account.password.toUtf8();
    const QByteArray caFile = account.caFile.toUtf8();
    curl_slist* recipients = nullptr;
    for (const QString& to : message.to)
        recipients = curl_slist_append(recipients, ("<" + bareAddress(to) + ">").toUtf8().constData());
    MailMessage withSender = message;
    if (withSender.from.isEmpty()) withSender.from = account.sender();
    Upload upload{withSender.toMime(), 0};

    char errorBuffer[CURL_ERROR_SIZE] = {0};
    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorBuffer);
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, recipients);
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, readPayload);
    curl_easy_setopt(curl, CURLOPT_READDATA, &upload);
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, 15L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT, static_cast<long>(timeoutSeconds));
    if (account.security == MailAccount::Security::StartTls) curl_easy_setopt(curl, CURLOPT_USE_SSL, CURLUSESSL_ALL);
    if (!caFile.isEmpty()) curl_easy_setopt(curl, CURLOPT_CAINFO, caFile.constData());
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    const CURLcode result = curl_easy_perform(curl);
    if (result == CURLE_OK) {
        outcome.sent = true;
    } else {
        outcome.error = QString::fromUtf8(errorBuffer[0] ? errorBuffer : curl_easy_strerror(result));
    }
    curl_slist_free_all(recipients);
    curl_easy_cleanup(curl);
    return outcome;
}
