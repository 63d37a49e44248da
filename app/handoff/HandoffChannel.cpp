#include "app/handoff/HandoffChannel.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

#include "library/store/LibraryLock.h"

namespace {
constexpr qint64 kMaxLine = 64 * 1024;
}

HandoffChannel::HandoffChannel(const std::string& libraryFolder, FileHandler handler)
    : folder_(libraryFolder), handler_(std::move(handler)) {}

HandoffChannel::~HandoffChannel() {
    if (server_) server_->close();
}

QString HandoffChannel::serverName(const std::string& libraryFolder) {
    QString folder = QDir(QString::fromStdString(libraryFolder)).canonicalPath();
    if (folder.isEmpty()) folder = QDir::cleanPath(QDir(QString::fromStdString(libraryFolder)).absolutePath());
    const QByteArray digest = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(16);
    return QString("quillo-%1-%2").arg(::getuid()).arg(QString::fromLatin1(digest));
}

bool HandoffChannel::listen(std::string* error) {
    const QString name = serverName(folder_);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    // Only the writer serves a library, so an existing socket is a leftover.
    QLocalServer::removeServer(name);
    if (!server_->listen(name)) {
        if (error) *error = server_->errorString().toStdString();
        server_.reset();
        return false;
    }
    connect(server_.get(), &QLocalServer::newConnection, this, &HandoffChannel::onNewConnection);
    return true;
}

void HandoffChannel::onNewConnection() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() > kMaxLine) socket->abort();
                return;
            }
            const QByteArray line = socket->readLine(kMaxLine).trimmed();
            const std::string answer = handler_ ? handler_(QString::fromUtf8(line).toStdString())
                                                : std::string("error\tnothing imports here");
            socket->write(QByteArray::fromStdString(answer) + '\n');
            socket->flush();
            socket->disconnectFromServer();
        });
    }
}

HandoffReply HandoffChannel::sendFile(const std::string& libraryFolder, const std::string& path, int timeoutMs) {
    HandoffReply reply;
    QLocalSocket socket;
    socket.connectToServer(serverName(libraryFolder));
    if (!socket.waitForConnected(1000)) return reply;
    socket.write(QString::fromStdString(path).toUtf8() + '\n');
    if (!socket.waitForBytesWritten(timeoutMs)) return reply;
    QByteArray answer;
    while (!answer.contains('\n') && socket.waitForReadyRead(timeoutMs)) answer += socket.readAll();
    answer += socket.readAll();
    if (!answer.contains('\n')) return reply;
    const QString line = QString::fromUtf8(answer.left(answer.indexOf('\n')));
    reply.delivered = true;
    const qsizetype tab = line.indexOf('\t');
    const QString status = tab < 0 ? line : line.left(tab);
    reply.imported = status == "ok";
    reply.text = (tab < 0 ? QString() : line.mid(tab + 1)).toStdString();
    return reply;
}

HandoffReply HandoffChannel::sendFileToLibraryHolder(const std::string& libraryFolder, const std::string& path) {
    LibraryLock::Holder holder;
    if (!LibraryLock::holder(libraryFolder, &holder)) return HandoffReply{};
    return sendFile(libraryFolder, path);
}
