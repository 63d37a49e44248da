#include "export/mail/Keyring.h"

#include <QEventLoop>
#include <qt6keychain/keychain.h>

namespace {
const QString kService = QStringLiteral("Quillo");
}

namespace keyring {

QString passwordKey(const QString& userName, const QString& server) {
    return QStringLiteral("mail:%1@%2").arg(userName.trimmed(), server.trimmed());
}

void readPassword(const QString& key, ReadDone done) {
    auto* job = new QKeychain::ReadPasswordJob(kService);
    job->setAutoDelete(true);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, [done](QKeychain::Job* j) {
        auto* read = static_cast<QKeychain::ReadPasswordJob*>(j);
        const bool found = read->error() == QKeychain::NoError;
        done(found, found ? read->textData() : QString());
    });
    job->start();
}

void writePassword(const QString& key, const QString& password, WriteDone done) {
    auto* job = new QKeychain::WritePasswordJob(kService);
    job->setAutoDelete(true);
    job->setKey(key);
    job->setTextData(password);
    QObject::connect(job, &QKeychain::Job::finished, [done](QKeychain::Job* j) {
        done(j->error() == QKeychain::NoError, j->errorString());
    });
    job->start();
}

bool readPasswordNow(const QString& key, QString* password) {
    QEventLoop loop;
    bool found = false, finished = false;
    readPassword(key, [&](bool ok, const QString& text) {
        found = ok;
        finished = true;
        if (ok && password) *password = text;
        loop.quit();
    });
    if (!finished) loop.exec();
    return found;
}

}  // namespace keyring
