// quillo-cli list sounds|loops|tracks: one line per item, FOLDER<TAB>NAME<TAB>ARTIST,
// folders newest first and items in folder order. A library without sounds
// gets the built-in content first, as at the program's launch.
#include <cstdio>
#include <memory>
#include <string>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "library/CoreDater.h"
#include "library/content/OpenedLibrary.h"
#include "library/text/Utly.h"

namespace {

template <class FolderT, class ItemT>
void printFolders(CoreDater& store, const char* folderEntity, const char* itemEntity) {
    // One line per item whatever a stored name holds (tabs, line ends).
    auto line = [](const std::string& folder, const ItemT* item) {
        std::printf("%s\t%s\t%s\n", Utly::oneLine(folder).c_str(), Utly::oneLine(item->name()).c_str(),
                    Utly::oneLine(item->artist()).c_str());
    };
    for (ManagedObject* o : store.getAllItemsOfEntity(folderEntity)) {
        auto* folder = static_cast<FolderT*>(o);
        for (ItemT* item : folder->items()) line(folder->name(), item);
    }
    // Items outside any folder come last, newest first.
    for (ManagedObject* o : store.getAllItemsOfEntity(itemEntity)) {
        auto* item = static_cast<ItemT*>(o);
        if (!item->inFolder()) line("", item);
    }
}

}  // namespace

int runList(CliContext& context) {
    if (context.args.size() != 1) {
        std::fprintf(stderr, "usage: quillo-cli list sounds|loops|tracks\n");
        return 2;
    }
    const std::string& kind = context.args[0];
    if (kind != "sounds" && kind != "loops" && kind != "tracks") {
        std::fprintf(stderr, "quillo-cli list: unknown kind \"%s\" (sounds, loops or tracks)\n", kind.c_str());
        return 2;
    }
    auto library = openLibraryForReading(context);
    CoreDater& dater = CoreDater::shIns();
    if (kind == "sounds") printFolders<SoundFolder, Sound>(dater, "SoundFolder", "Sound");
    else if (kind == "loops") printFolders<LoopFolder, Loop>(dater, "LoopFolder", "Loop");
    else printFolders<TrackFolder, Track>(dater, "TrackFolder", "Track");
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::perror("quillo-cli: cannot write the list");
        return 1;
    }
    return 0;
}
