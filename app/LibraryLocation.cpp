#include "app/LibraryLocation.h"

#include <QDir>

#include "library/media/Filer.h"
#include "library/store/LibraryStore.h"

std::string defaultLibraryFolder() { return Filer::defaultDocumentsDirectory(); }

std::string storePathInLibrary(const std::string& folder) {
    QDir().mkpath(QString::fromStdString(folder));
    return QDir(QString::fromStdString(folder)).filePath(LibraryStore::kFileName).toStdString();
}
