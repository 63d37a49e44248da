#include "app/LibraryLocation.h"

#include <QDir>
#include <QStandardPaths>
#include <cstdlib>

#include "library/store/LibraryStore.h"

std::string defaultLibraryFolder() {
    if (const char* env = std::getenv("QUILLO_LIBRARY"); env && *env) return env;
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir(base).filePath("Quillo").toStdString();
}

std::string storePathInLibrary(const std::string& folder) {
    QDir().mkpath(QString::fromStdString(folder));
    return QDir(QString::fromStdString(folder)).filePath(LibraryStore::kFileName).toStdString();
}
