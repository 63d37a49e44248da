#pragma once
// A mail as Quillo sends it: plain-text body and file attachments, turned
// into one MIME message (multipart/mixed, base64 attachments) that is both
// what goes over SMTP and what a draft .eml file holds.
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

struct MailAttachment {
    QByteArray data;
    QString mimeType;  // "audio/wav", "video/quicktime", "image/jpg"
    QString fileName;
};

struct MailMessage {
    QString from;        // an address; may be empty for a draft
    QStringList to;      // addresses
    QString subject;
    QString body;        // plain text
    std::vector<MailAttachment> attachments;

    // The whole message, CRLF line ends. `date` and `boundary` are fixed by
    // tests; otherwise now and a random boundary.
    QByteArray toMime(const QDateTime& date = QDateTime::currentDateTime(), const QByteArray& boundary = {}) const;
};

// A header value: as it is when plain ASCII, otherwise an RFC 2047 encoded word.
QByteArray encodeHeaderText(const QString& text);
// Just the address of "Name <address>" or of a bare address.
QString bareAddress(const QString& address);
// Roughly checks an address: something@something.something, no spaces.
bool looksLikeAddress(const QString& address);
