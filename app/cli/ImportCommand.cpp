// quillo-cli import FILE: imports a sound file as another program would hand
// it over: a new sound in "Imported", and the handed-over file removed.
#include <cstdio>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "library/model/Model.h"

int runImport(CliContext& context) {
    if (context.args.size() != 1) {
        std::fprintf(stderr, "usage: quillo-cli import FILE\n");
        return 2;
    }
    CliSession session(context, AudioDriverKind::Null);
    Sound* sound = session.app->handleOpenURL(context.args[0]);
    if (!sound) {
        std::fprintf(stderr, "quillo-cli: %s was not imported: it is not a sound file Quillo can play\n",
                     context.args[0].c_str());
        return 1;
    }
    std::printf("%s\t%s\n", sound->name().c_str(), sound->inFolder() ? sound->inFolder()->name().c_str() : "");
    return 0;
}
