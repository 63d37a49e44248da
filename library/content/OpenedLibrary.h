#pragma once
// A library folder opened for use: its store becomes the context of
// CoreDater and the folder Filer's documents directory, for as long as this
// object lives. A store with no sound at all (a first launch, or every sound
// deleted) first gets the built-in content.
#include <memory>
#include <string>

class LibraryStore;

class OpenedLibrary {
public:
    // Creates the folder if needed. A store that cannot be opened ends the
    // process (after logging why), as at the program's launch.
    static std::unique_ptr<OpenedLibrary> open(const std::string& folder);
    // Creates the built-in sounds, loops and tracks when the current store
    // holds no sound; returns whether it did.
    static bool createBuiltInContentIfEmpty();

    ~OpenedLibrary();
    OpenedLibrary(const OpenedLibrary&) = delete;
    OpenedLibrary& operator=(const OpenedLibrary&) = delete;

    LibraryStore& store() const { return *store_; }
    const std::string& folder() const { return folder_; }
    bool createdBuiltInContent() const { return createdBuiltInContent_; }

private:
    OpenedLibrary() = default;

    std::unique_ptr<LibraryStore> store_;
    std::string folder_;
    bool createdBuiltInContent_ = false;
};
