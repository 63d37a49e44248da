// quillo-cli import FILE: imports a sound file as another program would hand
// it over: a new sound in "Imported", and the handed-over file removed once
// the sound is saved. When the Quillo window holds the library, the file is
// handed to the window, which imports it.
#include <cstdio>
#include <filesystem>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "app/handoff/HandoffChannel.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "library/text/Localized.h"

int runImport(CliContext& context) {
    if (context.args.size() != 1) {
        std::fprintf(stderr, "usage: quillo-cli import FILE\n");
        return 2;
    }
    // The window may run in another folder: hand it an absolute path.
    std::string file = Filer::pathFromUrl(context.args[0]);
    if (file.empty()) {
        std::fprintf(stderr, "quillo-cli: %s is not a file\n", context.args[0].c_str());
        return 1;
    }
    std::error_code ec;
    file = std::filesystem::absolute(file, ec).lexically_normal().string();

    // The window holds the library: it imports the file. Another command
    // that holds it is waited for like any writer.
    HandoffReply reply = HandoffChannel::sendFileToLibraryHolder(context.libraryFolder, file);
    if (reply.delivered) {
        if (!reply.imported) {
            std::fprintf(stderr, "quillo-cli: %s\n", reply.text.c_str());
            return 1;
        }
        std::printf("%s\t%s\n", reply.text.c_str(), localized("Imported").c_str());
        return 0;
    }

    CliSession session(context, AudioDriverKind::Null, LibraryAccess::Write);
    Sound* sound = session.app->handleOpenURL(file);
    const ImportOutcome& outcome = session.app->lastImport();
    if (!sound) {
        std::fprintf(stderr, "quillo-cli: %s\n", outcome.error.c_str());
        return 1;
    }
    if (!outcome.warning.empty()) std::fprintf(stderr, "quillo-cli: %s\n", outcome.warning.c_str());
    std::printf("%s\t%s\n", sound->name().c_str(), sound->inFolder() ? sound->inFolder()->name().c_str() : "");
    return 0;
}
