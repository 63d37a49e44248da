#include "export/mail/MailAccount.h"

#include <QHostAddress>
#include <QSettings>

bool isLoopbackHost(const QString& host) {
    QString h = host.trimmed();
    if (h.startsWith(QLatin1Char('[')) && h.endsWith(QLatin1Char(']'))) h = h.mid(1, h.size() - 2);
    if (h.compare(QStringLiteral("localhost"), Qt::CaseInsensitive) == 0) return true;
    QHostAddress address;
    return address.setAddress(h) && address.isLoopback();
}

bool MailAccount::isSetUp() const { return !server.trimmed().isEmpty() && !sender().trimmed().isEmpty(); }

bool MailAccount::securityAllowed() const { return security != Security::None || isLoopbackHost(server); }

namespace {
const char* securityName(MailAccount::Security s) {
    switch (s) {
    case MailAccount::Security::Tls: return "tls";
    case MailAccount::Security::None: return "none";
    case MailAccount::Security::StartTls: break;
    }
    return "starttls";
}
}  // namespace

MailAccount MailAccount::load(const QSettings& settings) {
    MailAccount a;
    a.server = settings.value("mail/server").toString();
    a.port = settings.value("mail/port", 587).toInt();
    const QString security = settings.value("mail/security", "starttls").toString();
    a.security = security == "tls" ? Security::Tls : security == "none" ? Security::None : Security::StartTls;
    a.userName = settings.value("mail/user").toString();
    a.fromAddress = settings.value("mail/from").toString();
    a.caFile = settings.value("mail/caFile").toString();
    return a;
}

void MailAccount::save(QSettings& settings) const {
    settings.setValue("mail/server", server.trimmed());
    settings.setValue("mail/port", port);
    settings.setValue("mail/security", securityName(security));
    settings.setValue("mail/user", userName.trimmed());
    settings.setValue("mail/from", fromAddress.trimmed());
    if (caFile.isEmpty()) settings.remove("mail/caFile");
    else settings.setValue("mail/caFile", caFile);
    settings.sync();
}
