#include "export/mail/MailMessage.h"

#include <QRandomGenerator>
#include <QRegularExpression>

namespace {

bool isPlainAscii(const QString& text) {
    for (QChar c : text)
        if (c.unicode() > 126 || (c.unicode() < 32 && c != QLatin1Char('\t'))) return false;
    return true;
}

// Base64 in lines of 76 characters.
void appendBase64(QByteArray& out, const QByteArray& data) {
    const QByteArray b64 = data.toBase64();
    for (qsizetype i = 0; i < b64.size(); i += 76) {
        out += b64.mid(i, 76);
        out += "\r\n";
    }
}

// Body text with CRLF line ends (the SMTP transfer escapes leading dots itself).
QByteArray textLines(const QString& text) {
    QByteArray out;
    const QStringList lines = QString(text).replace("\r\n", "\n").split(QLatin1Char('\n'));
    for (const QString& line : lines) out += line.toUtf8() + "\r\n";
    return out;
}

QByteArray quotedFileName(const QString& name) {
    QString safe = name;
    safe.replace(QLatin1Char('"'), QLatin1Char('\''));
    if (isPlainAscii(safe)) return "\"" + safe.toLatin1() + "\"";
    return "\"" + encodeHeaderText(safe) + "\"";
}

}  // namespace

QByteArray encodeHeaderText(const QString& text) {
    if (isPlainAscii(text)) return text.toLatin1();
    return "=?UTF-8?B?" + text.toUtf8().toBase64() + "?=";
}

QString bareAddress(const QString& address) {
    const qsizetype open = address.indexOf(QLatin1Char('<'));
    const qsizetype close = address.lastIndexOf(QLatin1Char('>'));
    if (open >= 0 && close > open) return address.mid(open + 1, close - open - 1).trimmed();
    return address.trimmed();
}

bool looksLikeAddress(const QString& address) {
    static const QRegularExpression pattern(QStringLiteral("^[^\\s@<>]+@[^\\s@<>]+$"));
    return pattern.match(bareAddress(address)).hasMatch();
}

QByteArray MailMessage::toMime(const QDateTime& date, const QByteArray& givenBoundary) const {
    QByteArray boundary = givenBoundary;
    if (boundary.isEmpty())
        boundary = "quillo-" + QByteArray::number(QRandomGenerator::global()->generate64(), 16);
    QByteArray out;
    out += "Date: " + date.toString(Qt::RFC2822Date).toLatin1() + "\r\n";
    if (!from.isEmpty()) out += "From: " + encodeHeaderText(from) + "\r\n";
    if (!to.isEmpty()) out += "To: " + encodeHeaderText(to.join(QStringLiteral(", "))) + "\r\n";
    out += "Subject: " + encodeHeaderText(subject) + "\r\n";
    out += "MIME-Version: 1.0\r\n";
    out += "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n\r\n";
    out += "--" + boundary + "\r\n";
    out += "Content-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n";
    out += textLines(body);
    for (const MailAttachment& a : attachments) {
        out += "--" + boundary + "\r\n";
        out += "Content-Type: " + a.mimeType.toLatin1() + "; name=" + quotedFileName(a.fileName) + "\r\n";
        out += "Content-Transfer-Encoding: base64\r\n";
        out += "Content-Disposition: attachment; filename=" + quotedFileName(a.fileName) + "\r\n\r\n";
        appendBase64(out, a.data);
    }
    out += "--" + boundary + "--\r\n";
    return out;
}
