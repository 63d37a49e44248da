// quillo-cli print-loops: the library's own (not built-in) loops and tracks as
// built-in content source, newest first, ready to paste into the content
// scripts.
#include <cstdio>
#include <string>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "library/content/OpenedLibrary.h"
#include "library/content/Prepopulator.h"

int runPrintLoops(CliContext& context) {
    if (!context.args.empty()) {
        std::fprintf(stderr, "usage: quillo-cli print-loops\n");
        return 2;
    }
    auto library = openLibraryForReading(context);
    std::string text = Prepopulator::printLoops() + Prepopulator::printTracks();
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
    return 0;
}
