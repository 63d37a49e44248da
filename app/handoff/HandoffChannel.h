#pragma once
// Handing a file to the Quillo window that already runs on a library.
//
// The window holds the library's writer lock, so a second program cannot
// import into it; instead it hands the file over through a local socket whose
// name is derived from the library folder, and the window imports it. The
// server side lives in the window (with its event loop); the client side is
// used by `quillo FILE` and `quillo-cli import`. One request per connection:
// the client sends the file's absolute path as one line, the server answers
// one line, "ok<TAB>NAME" or "error<TAB>MESSAGE".
#include <QObject>
#include <functional>
#include <memory>
#include <string>

class QLocalServer;

struct HandoffReply {
    bool delivered = false;  // a window took the request and answered
    bool imported = false;   // its answer was "ok"
    std::string text;        // the new sound's name, or the window's message
};

class HandoffChannel : public QObject {
public:
    // Receives one handed-over path; returns the answer line for the client
    // ("ok\tNAME" or "error\tMESSAGE"). Runs on the server's thread.
    using FileHandler = std::function<std::string(const std::string& path)>;

    HandoffChannel(const std::string& libraryFolder, FileHandler handler);
    ~HandoffChannel() override;

    // Starts serving. Call only while holding the library's writer lock: a
    // socket left by a window that died is removed first. False (with the
    // reason) when the socket cannot be made.
    bool listen(std::string* error);

    // The socket's name for a library folder: the same for every spelling of
    // the folder's path, and per user.
    static QString serverName(const std::string& libraryFolder);

    // Client: hands `path` to the window serving `libraryFolder`, waiting up
    // to timeoutMs for its answer. Not delivered when nobody serves it.
    static HandoffReply sendFile(const std::string& libraryFolder, const std::string& path, int timeoutMs = 30000);
    // As sendFile, but only when some program holds the library's writer
    // lock (`quillo FILE` and `quillo-cli import` start with this). Not
    // delivered when nobody holds it or the holder serves no channel.
    static HandoffReply sendFileToLibraryHolder(const std::string& libraryFolder, const std::string& path);

private:
    void onNewConnection();

    std::string folder_;
    FileHandler handler_;
    std::unique_ptr<QLocalServer> server_;
};
