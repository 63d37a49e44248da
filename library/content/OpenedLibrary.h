#pragma once
// A library folder opened for use: its store becomes the context of
// CoreDater and the folder Filer's documents directory, for as long as this
// object lives. A store with no sound at all (a first launch, or every sound
// deleted) first gets the built-in content.
//
// A writer holds the library's lock (one writer per library) for as long as
// this object lives. A reader takes no lock and opens the store read-only, so
// it works alongside a writer and on read-only media; only when the library
// has no store or no sound yet does it become a writer for the moment it
// takes to make the built-in content.
#include <memory>
#include <string>

class LibraryLock;
class LibraryStore;

enum class LibraryAccess { Read, Write };

struct LibraryOpenError {
    // Exit status for the command line: 75 the library is busy (another
    // writer), 73 it cannot be written (read-only), 70 the store is unusable.
    int exitCode = 0;
    std::string message;  // one line for a person, with the system's reason
};

class OpenedLibrary {
public:
    // Creates the folder if needed. On failure returns null and fills *error;
    // nothing in the folder has changed then.
    static std::unique_ptr<OpenedLibrary> open(const std::string& folder, LibraryAccess access,
                                               LibraryOpenError* error);
    // A writer; a library that cannot be opened ends the process after
    // printing why (as the program's launch does).
    static std::unique_ptr<OpenedLibrary> open(const std::string& folder);
    // Creates the built-in sounds, loops and tracks in one transaction when
    // the current store holds no sound; returns whether it made them (false
    // too when the save failed: then nothing of them is on disk).
    static bool createBuiltInContentIfEmpty();
    // True when the current store holds no sound at all.
    static bool storeHoldsNoSound();
    // The built-in content, in one transaction, without looking first.
    static bool createBuiltInContent();

    ~OpenedLibrary();
    OpenedLibrary(const OpenedLibrary&) = delete;
    OpenedLibrary& operator=(const OpenedLibrary&) = delete;

    LibraryStore& store() const { return *store_; }
    const std::string& folder() const { return folder_; }
    bool createdBuiltInContent() const { return createdBuiltInContent_; }
    bool writable() const { return lock_ != nullptr; }

private:
    OpenedLibrary();
    bool openForWriting(LibraryOpenError* error);
    void becomeCurrent();

    std::unique_ptr<LibraryLock> lock_;
    std::unique_ptr<LibraryStore> store_;
    std::string folder_;
    bool createdBuiltInContent_ = false;
};
