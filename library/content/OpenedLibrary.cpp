#include "library/content/OpenedLibrary.h"

#include <filesystem>

#include "library/CoreDater.h"
#include "library/content/Prepopulator.h"
#include "library/media/Filer.h"
#include "library/store/LibraryStore.h"
#include "library/util/Log.h"

std::unique_ptr<OpenedLibrary> OpenedLibrary::open(const std::string& folder) {
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);  // a failure shows when the store is opened
    std::unique_ptr<OpenedLibrary> library(new OpenedLibrary());
    library->folder_ = folder;
    library->store_ = LibraryStore::openOrExit((std::filesystem::path(folder) / LibraryStore::kFileName).string());
    CoreDater::shIns().setManagedObjectContext(library->store_.get());
    Filer::setDocumentsDirectory(folder);
    library->createdBuiltInContent_ = createBuiltInContentIfEmpty();
    return library;
}

bool OpenedLibrary::createBuiltInContentIfEmpty() {
    CoreDater& dater = CoreDater::shIns();
    if (!dater.getAllItemsOfEntity("Sound").empty()) return false;
    qlog("baseIsEmpty");
    Prepopulator::createSounds();
    Prepopulator::createLoops();
    Prepopulator::createTracks();
    return true;
}

OpenedLibrary::~OpenedLibrary() {
    CoreDater& dater = CoreDater::shIns();
    if (dater.managedObjectContext() == store_.get()) dater.setManagedObjectContext(nullptr);
}
