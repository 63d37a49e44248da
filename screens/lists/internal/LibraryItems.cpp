#include "screens/lists/internal/LibraryItems.h"

#include "library/model/Model.h"

namespace library_items {

namespace {

// Calls f with the folder as its own kind.
template <class F>
auto withFolder(ManagedObject* folder, F&& f) {
    if (auto* s = dynamic_cast<SoundFolder*>(folder)) return f(*s);
    if (auto* l = dynamic_cast<LoopFolder*>(folder)) return f(*l);
    return f(*static_cast<TrackFolder*>(folder));
}

template <class F, class R>
R withItem(ManagedObject* item, F&& f, R otherwise) {
    if (auto* s = dynamic_cast<Sound*>(item)) return f(*s);
    if (auto* l = dynamic_cast<Loop*>(item)) return f(*l);
    if (auto* t = dynamic_cast<Track*>(item)) return f(*t);
    return otherwise;
}

}  // namespace

std::string folderName(ManagedObject* folder) {
    return withFolder(folder, [](auto& f) { return f.name(); });
}

void setFolderName(ManagedObject* folder, const std::string& name) {
    withFolder(folder, [&](auto& f) { f.setName(name); });
}

bool folderOpened(ManagedObject* folder) {
    return withFolder(folder, [](auto& f) { return f.opened(); });
}

void setFolderOpened(ManagedObject* folder, bool opened) {
    withFolder(folder, [&](auto& f) { f.setOpened(opened); });
}

std::vector<ManagedObject*> folderItems(ManagedObject* folder) {
    return withFolder(folder, [](auto& f) { return std::vector<ManagedObject*>(f.items().begin(), f.items().end()); });
}

std::string itemName(ManagedObject* item) {
    return withItem(item, [](auto& i) { return i.name(); }, std::string());
}

std::string itemArtist(ManagedObject* item) {
    return withItem(item, [](auto& i) { return i.artist(); }, std::string());
}

bool isUsers(ManagedObject* item) {
    return withItem(item, [](auto& i) { return !i.preloaded(); }, false);
}

}  // namespace library_items
