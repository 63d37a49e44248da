#include "library/content/OpenedLibrary.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "library/CoreDater.h"
#include "library/content/Prepopulator.h"
#include "library/media/Filer.h"
#include "library/store/LibraryLock.h"
#include "library/store/LibraryStore.h"
#include "library/util/Log.h"

namespace {
std::string storePath(const std::string& folder) {
    return (std::filesystem::path(folder) / LibraryStore::kFileName).string();
}

void fill(LibraryOpenError* error, int code, const std::string& message) {
    qlog("%s", message.c_str());
    if (error) *error = LibraryOpenError{code, message};
}
}  // namespace

OpenedLibrary::OpenedLibrary() = default;

std::unique_ptr<OpenedLibrary> OpenedLibrary::open(const std::string& folder, LibraryAccess access,
                                                   LibraryOpenError* error) {
    std::unique_ptr<OpenedLibrary> library(new OpenedLibrary());
    library->folder_ = folder;
    if (access == LibraryAccess::Read) {
        StoreError storeError;
        library->store_ = LibraryStore::openReadOnly(storePath(folder), &storeError);
        if (library->store_) {
            library->becomeCurrent();
            if (!storeHoldsNoSound()) return library;
            library->store_.reset();
        }
        // No store or no sound yet: write the built-in content first. A
        // library that cannot be written is read as it is.
        LibraryOpenError writeError;
        if (library->openForWriting(&writeError)) return library;
        if (writeError.exitCode == 73 && std::filesystem::exists(storePath(folder))) {
            library->store_ = LibraryStore::openReadOnly(storePath(folder), &storeError);
            if (library->store_) {
                library->becomeCurrent();
                return library;
            }
        }
        if (error) *error = writeError;
        return nullptr;
    }
    if (!library->openForWriting(error)) return nullptr;
    return library;
}

bool OpenedLibrary::openForWriting(LibraryOpenError* error) {
    std::error_code ec;
    std::filesystem::create_directories(folder_, ec);
    if (ec) {
        fill(error, ec == std::errc::read_only_file_system || ec == std::errc::permission_denied ? 73 : 70,
             "cannot create the library folder " + folder_ + ": " + ec.message());
        return false;
    }
    LibraryLock::Failure failure = LibraryLock::Failure::None;
    std::string reason;
    LibraryLock::Holder holder;
    lock_ = LibraryLock::acquire(folder_, LibraryLock::defaultWait(), &failure, &reason, &holder);
    if (!lock_) {
        if (failure == LibraryLock::Failure::Busy)
            fill(error, 75, "the library " + folder_ + " is in use by " + holder.text() + "; try again when it has finished");
        else if (failure == LibraryLock::Failure::ReadOnly)
            fill(error, 73, "the library " + folder_ + " cannot be changed: " + reason);
        else
            fill(error, 70, "cannot lock the library " + folder_ + ": " + reason);
        return false;
    }
    StoreError storeError;
    store_ = LibraryStore::open(storePath(folder_), &storeError);
    if (!store_) {
        qlog("Unresolved error %s, {%s}", storeError.description.c_str(), storeError.details.c_str());
        fill(error, 70, storeError.description + ": " + storePath(folder_));
        lock_.reset();
        return false;
    }
    becomeCurrent();
    if (storeHoldsNoSound()) {  // the launch's one such check
        createdBuiltInContent_ = createBuiltInContent();
        if (!createdBuiltInContent_) {
            fill(error, 74, "cannot add the built-in sounds to " + folder_ + ": " + CoreDater::shIns().lastSaveError());
            CoreDater::shIns().setManagedObjectContext(nullptr);
            store_.reset();
            lock_.reset();
            return false;
        }
    }
    return true;
}

void OpenedLibrary::becomeCurrent() {
    CoreDater::shIns().setManagedObjectContext(store_.get());
    Filer::setDocumentsDirectory(folder_);
}

std::unique_ptr<OpenedLibrary> OpenedLibrary::open(const std::string& folder) {
    LibraryOpenError error;
    auto library = open(folder, LibraryAccess::Write, &error);
    if (!library) {
        std::fprintf(stderr, "quillo: %s\n", error.message.c_str());
        std::exit(error.exitCode);
    }
    return library;
}

bool OpenedLibrary::storeHoldsNoSound() {
    LibraryStore* store = CoreDater::shIns().managedObjectContext();
    return !store || store->objects(Entity::Sound).empty();
}

bool OpenedLibrary::createBuiltInContentIfEmpty() { return storeHoldsNoSound() && createBuiltInContent(); }

bool OpenedLibrary::createBuiltInContent() {
    CoreDater& dater = CoreDater::shIns();
    qlog("baseIsEmpty");
    // One transaction: a launch killed (or a disk filling up) half-way leaves
    // no built-in content at all, and the next launch makes all of it.
    dater.beginBatch();
    Prepopulator::createSounds();
    Prepopulator::createLoops();
    Prepopulator::createTracks();
    return dater.endBatch();
}

OpenedLibrary::~OpenedLibrary() {
    CoreDater& dater = CoreDater::shIns();
    if (store_ && dater.managedObjectContext() == store_.get()) dater.setManagedObjectContext(nullptr);
}
