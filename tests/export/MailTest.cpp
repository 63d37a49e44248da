// Mail end to end: a real SMTP server on 127.0.0.1 (aiosmtpd, plain and
// STARTTLS with a throw-away certificate) receives what the export screen
// sends; the received messages are taken apart again.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <map>

#include "export/RenderedSound.h"
#include "export/mail/MailComposer.h"
#include "export/mail/SmtpSender.h"
#include "tests/export/ExportTestSupport.h"

namespace {

int freePort() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

// aiosmtpd storing every message in a maildir.
class SmtpServer {
public:
    SmtpServer(const QString& folder, const QString& cert = {}, const QString& key = {}) : maildir_(folder + "/maildir") {
        port = freePort();
        QStringList args{"-m", "aiosmtpd", "-n", "-l", QStringLiteral("127.0.0.1:%1").arg(port)};
        if (!cert.isEmpty()) args << "--tlscert" << cert << "--tlskey" << key;
        args << "-c" << "aiosmtpd.handlers.Mailbox" << maildir_;
        process_.start("/usr/bin/python3", args);
        for (int i = 0; i < 200; ++i) {  // up to 10 s to come up
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, quint16(port));
            if (socket.waitForConnected(50)) return;
            QThread::msleep(50);
        }
        ADD_FAILURE() << "the SMTP server did not start: " << process_.readAllStandardError().toStdString();
    }
    ~SmtpServer() {
        process_.kill();
        process_.waitForFinished(3000);
    }
    std::vector<QByteArray> messages() const {
        std::vector<QByteArray> out;
        for (const QFileInfo& f : QDir(maildir_ + "/new").entryInfoList(QDir::Files, QDir::Time | QDir::Reversed)) {
            QFile file(f.filePath());
            if (file.open(QIODevice::ReadOnly)) out.push_back(file.readAll());
        }
        return out;
    }
    int port = 0;

private:
    QString maildir_;
    QProcess process_;
};

struct Part {
    std::map<QByteArray, QByteArray> headers;  // lower-case names
    QByteArray body;
};

// The header block and the parts of a multipart message.
struct Received {
    std::map<QByteArray, QByteArray> headers;
    std::vector<Part> parts;
    QByteArray header(const QByteArray& name) const {
        auto it = headers.find(name);
        return it == headers.end() ? QByteArray() : it->second;
    }
};

std::map<QByteArray, QByteArray> parseHeaders(const QByteArray& block) {
    std::map<QByteArray, QByteArray> headers;
    QByteArray last;
    for (const QByteArray& line : block.split('\n')) {
        const QByteArray l = line.endsWith('\r') ? line.chopped(1) : line;
        if (l.isEmpty()) continue;
        if ((l[0] == ' ' || l[0] == '\t') && !last.isEmpty()) {
            headers[last] += " " + l.trimmed();
            continue;
        }
        const int colon = l.indexOf(':');
        if (colon < 0) continue;
        last = l.left(colon).toLower();
        headers[last] = l.mid(colon + 1).trimmed();
    }
    return headers;
}

Received parse(QByteArray mail) {
    mail.replace("\r\n", "\n");
    Received r;
    const int split = mail.indexOf("\n\n");
    r.headers = parseHeaders(mail.left(split));
    const QByteArray type = r.header("content-type");
    const int b = type.indexOf("boundary=\"");
    if (b < 0) return r;
    const QByteArray boundary = "--" + type.mid(b + 10, type.indexOf('"', b + 10) - b - 10);
    const QList<QByteArray> chunks = mail.mid(split + 2).split('\n');
    QByteArray current;
    bool inPart = false;
    auto close = [&] {
        if (!inPart) return;
        Part p;
        const int end = current.indexOf("\n\n");
        p.headers = parseHeaders(current.left(end));
        p.body = current.mid(end + 2);
        if (p.headers["content-transfer-encoding"] == "base64") p.body = QByteArray::fromBase64(p.body);
        r.parts.push_back(p);
    };
    for (const QByteArray& line : chunks) {
        if (line.startsWith(boundary)) {
            close();
            current.clear();
            inPart = !line.startsWith(boundary + "--");
            continue;
        }
        current += line + "\n";
    }
    return r;
}

// Attachments as "type name" lines, in order.
std::vector<std::string> attachmentList(const Received& r) {
    std::vector<std::string> out;
    for (const Part& p : r.parts) {
        auto it = p.headers.find("content-disposition");
        if (it == p.headers.end()) continue;
        const QByteArray type = p.headers.at("content-type");
        const QByteArray name = it->second.mid(it->second.indexOf("filename=\"") + 10).chopped(1);
        out.push_back((type.left(type.indexOf(';')) + " " + name).toStdString());
    }
    return out;
}

QByteArray fileBytes(const std::string& path) {
    QFile f(QString::fromStdString(path));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class MailTest : public ExportTest {
protected:
    MailAccount account(int port, MailAccount::Security security = MailAccount::Security::None) {
        MailAccount a;
        a.server = "127.0.0.1";
        a.port = port;
        a.security = security;
        a.fromAddress = "me@example.org";
        return a;
    }
    // Sends the screen's mail to "you@example.org" and waits for the result.
    QString sendTo(ExportVC& vc) {
        if (!vc.composer()) return "no composer";
        vc.composer()->setTo("you@example.org");
        vc.composer()->send();
        processEventsUntil([&] { return vc.phase() == ExportVC::Result; }, 30.0);
        return vc.resultText();
    }
};

}  // namespace

TEST_F(MailTest, SoundsFoldersAndLoopsArriveWithTheirAttachments) {
    QTemporaryDir serverDir;
    SmtpServer server(serverDir.path());
    Sound* kick = makeSound("Tock", hit(300), "Mine");
    makeSound("Ping", hit(200), "Mine", false);  // no photo
    makeSound("Gone", hit(10), "Mine");
    Filer::deleteFileAtPath(Filer::pathForWavSound("Gone"));  // its WAV is missing: skipped
    makeLoop("Beat", 120, {{kick, "1-------1-------"}, {kick, "----1-------1---"}});

    // One sound with its photo.
    ExportVC& sound = screen("sound", "Tock");
    sound.setMailAccount(account(server.port));
    sound.sendPressed();
    EXPECT_EQ(sendTo(sound), "Mail sent");
    // A folder: each sound's WAV and photo, in folder order.
    ExportVC& folder = screen("soundFolder", "Mine");
    folder.setMailAccount(account(server.port));
    folder.sendPressed();
    EXPECT_EQ(sendTo(folder), "Mail sent");
    // A loop's audio (its photos: each sound once), then its video without photos.
    ExportVC& loop = screen("loop", "Beat");
    loop.setMailAccount(account(server.port));
    capture();
    EXPECT_EQ(sendTo(loop), "Mail sent");
    ExportVC& video = screen("loop", "Beat");
    video.setMailAccount(account(server.port));
    video.audioVideoChanged(1);
    video.attachPhotosChanged(1);
    capture();
    ASSERT_TRUE(waitForEnd());
    EXPECT_EQ(sendTo(video), "Mail sent");

    const std::vector<QByteArray> mails = server.messages();
    ASSERT_EQ(mails.size(), 4u);
    const Received m0 = parse(mails[0]), m1 = parse(mails[1]), m2 = parse(mails[2]), m3 = parse(mails[3]);
    EXPECT_EQ(m0.header("subject"), "Sound 'Tock' from 'Quillo'");
    EXPECT_EQ(m0.header("to"), "you@example.org");
    ASSERT_GE(m0.parts.size(), 1u);
    EXPECT_EQ(m0.parts[0].body.trimmed(), "Created in 'Quillo' app \n" + QByteArray(kQuilloPage));
    EXPECT_EQ(attachmentList(m0), (std::vector<std::string>{"audio/wav Tock.wav", "image/jpg Tock.jpg"}));
    EXPECT_EQ(m0.parts[1].body, fileBytes(Filer::pathForWavSound("Tock")));
    EXPECT_TRUE(QImage::fromData(m0.parts[2].body, "JPG").size() == QSize(24, 24));

    EXPECT_EQ(m1.header("subject"), "Sounds from folder 'Mine'");
    EXPECT_EQ(attachmentList(m1), (std::vector<std::string>{"audio/wav Tock.wav", "image/jpg Tock.jpg",
                                                            "audio/wav Ping.wav", "image/jpg Gone.jpg"}));

    EXPECT_EQ(m2.header("subject"), "Loop 'Beat' from 'Quillo'");
    EXPECT_EQ(attachmentList(m2), (std::vector<std::string>{"audio/wav Beat.wav", "image/jpg Tock.jpg"}));
    EXPECT_EQ(m2.parts[1].body, fileBytes(Filer::pathForWavSound("Beat")));  // left in the library folder
    EXPECT_EQ(CoreDater::shIns().findEntity("Sound", "Beat"), nullptr);    // as a file, not a sound

    EXPECT_EQ(m3.header("subject"), "Video 'Beat' from 'Quillo'");
    EXPECT_EQ(attachmentList(m3), (std::vector<std::string>{"video/quicktime Beat.mov"}));
    ASSERT_EQ(m3.parts.size(), 2u);
    QFile movie(QString::fromStdString(temp.file("received.mov")));
    ASSERT_TRUE(movie.open(QIODevice::WriteOnly));
    movie.write(m3.parts[1].body);
    movie.close();
    const ProbedMovie probed = ffprobe(movie.fileName().toStdString());
    std::string streams;
    for (const ProbedStream& stream : probed.streams) streams += stream.type + " " + stream.codec + "; ";
    EXPECT_TRUE(probed.stream("video") && probed.stream("audio"))
        << "streams: " << streams << "attachment of " << m3.parts[1].body.size() << " bytes";
}

TEST_F(MailTest, StartTlsWithAThrowAwayCertificate) {
    QTemporaryDir dir;
    const QString cert = dir.filePath("cert.pem"), key = dir.filePath("key.pem");
    ASSERT_EQ(QProcess::execute("openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out",
                                            cert, "-days", "1", "-subj", "/CN=127.0.0.1", "-addext",
                                            "subjectAltName=IP:127.0.0.1"}),
              0);
    SmtpServer server(dir.path(), cert, key);
    makeSound("Tock", hit(300), "Mine");

    MailMessage message;
    message.to = QStringList{"you@example.org"};
    message.subject = QString::fromUtf8("Größe");
    message.body = ".a line that starts with a dot";
    MailAccount trusted = account(server.port, MailAccount::Security::StartTls);
    trusted.caFile = cert;
    SmtpOutcome outcome = sendMailOverSmtp(trusted, message, 20);
    EXPECT_TRUE(outcome.sent) << outcome.error.toStdString();
    // The certificate is checked: unknown, it is refused, and nothing is sent in the clear.
    outcome = sendMailOverSmtp(account(server.port, MailAccount::Security::StartTls), message, 20);
    EXPECT_FALSE(outcome.sent);
    // The server requires STARTTLS: a plain session gets nowhere.
    outcome = sendMailOverSmtp(account(server.port), message, 20);
    EXPECT_FALSE(outcome.sent);

    const std::vector<QByteArray> mails = server.messages();
    ASSERT_EQ(mails.size(), 1u);
    const Received r = parse(mails[0]);
    EXPECT_EQ(r.header("subject"), "=?UTF-8?B?" + QString::fromUtf8("Größe").toUtf8().toBase64() + "?=");
    EXPECT_EQ(r.parts[0].body.trimmed(), ".a line that starts with a dot");
}

TEST_F(MailTest, RefusedConnectionsDraftsAndAccountRules) {
    makeSound("Tock", hit(300), "Mine");
    // Nobody listens on the port: "Mail failed".
    ExportVC& sound = screen("sound", "Tock");
    sound.setMailAccount(account(freePort()));
    sound.sendPressed();
    EXPECT_EQ(sendTo(sound), "Mail failed");

    // A draft is a whole message in the library's Drafts folder.
    ExportVC& draft = screen("sound", "Tock");
    draft.setMailAccount(account(freePort()));
    draft.sendPressed();
    ASSERT_TRUE(draft.composer());
    draft.composer()->saveDraft();
    EXPECT_EQ(draft.resultText(), "Mail's saved");
    const QFileInfoList drafts = QDir(MailComposer::draftsFolder()).entryInfoList(QDir::Files);
    ASSERT_EQ(drafts.size(), 1);
    EXPECT_EQ(drafts[0].fileName(), "Sound 'Tock' from 'Quillo'.eml");
    QFile eml(drafts[0].filePath());
    ASSERT_TRUE(eml.open(QIODevice::ReadOnly));
    const QByteArray draftText = eml.readAll();
    EXPECT_EQ(attachmentList(parse(draftText)),
              (std::vector<std::string>{"audio/wav Tock.wav", "image/jpg Tock.jpg"}))
        << draftText.left(600).toStdString();

    // Cancel, and a composer that will not send to a bad address.
    ExportVC& cancelled = screen("sound", "Tock");
    cancelled.setMailAccount(account(freePort()));
    cancelled.sendPressed();
    ASSERT_TRUE(cancelled.composer());
    cancelled.composer()->setTo("not an address");
    cancelled.composer()->send();
    EXPECT_FALSE(cancelled.composer()->problem().isEmpty());
    EXPECT_EQ(cancelled.phase(), ExportVC::Composing);
    cancelled.composer()->cancel();
    EXPECT_EQ(cancelled.resultText(), "Mail cancelled");

    // A plain connection is for this machine only.
    MailAccount remote = account(25);
    remote.server = "mail.example.org";
    EXPECT_FALSE(remote.securityAllowed());
    EXPECT_FALSE(sendMailOverSmtp(remote, MailMessage{"", {"you@example.org"}, "s", "b", {}}).sent);
    for (const char* host : {"localhost", "127.0.0.1", "127.1.2.3", "::1", "[::1]"}) EXPECT_TRUE(isLoopbackHost(host)) << host;
    EXPECT_FALSE(isLoopbackHost("128.0.0.1"));
}
