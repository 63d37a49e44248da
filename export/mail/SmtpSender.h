#pragma once
// Sends one message over SMTP with libcurl: TLS from the start (SMTPS) or
// STARTTLS required, certificates verified; a plain connection only to a
// server on this machine. Blocking: call it off the main thread.
#include <QString>

#include "export/mail/MailAccount.h"
#include "export/mail/MailMessage.h"

struct SmtpOutcome {
    bool sent = false;
    QString error;  // libcurl's description of what failed
};

SmtpOutcome sendMailOverSmtp(const MailAccount& account, const MailMessage& message, int timeoutSeconds = 60);
