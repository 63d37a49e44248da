#pragma once
// The mail password in the desktop's keyring (Secret Service, KWallet), never
// in a settings file. When there is no keyring the calls fail and the
// composer asks for the password each time it sends. Main thread.
#include <QString>
#include <functional>

namespace keyring {

// The entry a password lives under: one per account.
QString passwordKey(const QString& userName, const QString& server);

using ReadDone = std::function<void(bool found, const QString& password)>;
using WriteDone = std::function<void(bool stored, const QString& error)>;

void readPassword(const QString& key, ReadDone done);
void writePassword(const QString& key, const QString& password, WriteDone done);
// For the command line: waits for the keyring (a local event loop).
bool readPasswordNow(const QString& key, QString* password);

}  // namespace keyring
