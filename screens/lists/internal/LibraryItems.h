#pragma once
// The lists handle folders and items of three kinds alike; these read and
// write the attributes they share, whatever the kind.
#include <string>
#include <vector>

class ManagedObject;

namespace library_items {

std::string folderName(ManagedObject* folder);
void setFolderName(ManagedObject* folder, const std::string& name);
bool folderOpened(ManagedObject* folder);
void setFolderOpened(ManagedObject* folder, bool opened);
std::vector<ManagedObject*> folderItems(ManagedObject* folder);

std::string itemName(ManagedObject* item);
std::string itemArtist(ManagedObject* item);
// A user's own item (anything that is not a known item counts as built in).
bool isUsers(ManagedObject* item);

}  // namespace library_items
