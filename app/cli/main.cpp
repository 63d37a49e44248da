// quillo-cli: Quillo's library, players and renderer from the command line.
#include <QCoreApplication>
#include <QGuiApplication>
#include <memory>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "app/LibraryLocation.h"
#include "app/cli/Commands.h"
#include "library/util/Log.h"

namespace {

const CliCommand kCommands[] = {
    {"list", "list sounds|loops|tracks", "print the library: FOLDER<TAB>NAME<TAB>ARTIST per line", runList},
    {"print-loops", "print-loops", "print the user's loops and tracks as built-in content source", runPrintLoops},
    {"render", "render loop|track NAME -o FILE.wav [...]",
     "render to a WAV file (loop: --repeats N, default 1; track: --start-square S)", runRender},
    {"play", "play loop|track|sound NAME [--seconds S]", "play live until Ctrl-C or S seconds", runPlay},
    {"import", "import FILE", "import a sound file into \"Imported\" (the file is moved in)", runImport},
    {"play-file", "play-file FILE [--seconds S]", "play a sound file (the null device when there is none)", runPlayFile},
    {"record", "record -o FILE.wav [...]",
     "record the microphone, trimmed (--seconds S, --stereo, --no-trim)", runRecord},
    {"trim", "trim IN.wav -o OUT.wav [--export]", "cut the silence off both ends of a sound", runTrim},
    {"export", "export sound|folder|loop|track NAME [...]",
     "save, mail or write (-o) as the export screen does (--video, --format, --repeats, --no-photos, --save, --mail)",
     runExport},
};

void printUsage(FILE* out) {
    std::fprintf(out, "usage: quillo-cli [--library DIR] COMMAND [ARGS]\n\ncommands:\n");
    for (const CliCommand& c : kCommands) std::fprintf(out, "  %-40s %s\n", c.usage, c.summary);
    std::fprintf(out,
                 "\noptions:\n  --library DIR   the library folder (default: $QUILLO_LIBRARY or "
                 "~/.local/share/Quillo)\n"
                 "  --verbose       copy the program's log to standard error (it is always in\n"
                 "                  $XDG_STATE_HOME/Quillo/quillo.log)\n"
                 "\nexit status: 0 done; 1 failed (the reason is on standard error); 2 bad usage;\n"
                 "  70 the library store is unusable; 73 the library cannot be changed (read-only);\n"
                 "  74 the library could not be saved; 75 another program is changing the library;\n"
                 "  130/143 interrupted (Ctrl-C, SIGTERM)\n");
}

}  // namespace

int main(int argc, char** argv) {
    // Qt's translations and local sockets want an application object; export
    // films views, which needs the GUI one (offscreen: there is no window).
    bool exporting = false;
    for (int k = 1; k < argc; ++k) exporting = exporting || std::strcmp(argv[k], "export") == 0;
    if (exporting && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QCoreApplication> application =
        exporting ? std::make_unique<QGuiApplication>(argc, argv) : std::make_unique<QCoreApplication>(argc, argv);
    CliContext context;
    context.libraryFolder = defaultLibraryFolder();
    int i = 1;
    for (; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--library") {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "quillo-cli: --library needs a folder\n");
                return 2;
            }
            context.libraryFolder = argv[++i];
        } else if (a == "--verbose") {
            quillo_log::setVerbose(true);
        } else if (a == "-h" || a == "--help" || a == "help") {
            printUsage(stdout);
            return 0;
        } else {
            break;
        }
    }
    if (i >= argc) {
        printUsage(stderr);
        return 2;
    }
    std::string name = argv[i++];
    for (; i < argc; ++i) context.args.emplace_back(argv[i]);
    for (const CliCommand& c : kCommands) {
        if (name == c.name) return c.run(context);
    }
    std::fprintf(stderr, "quillo-cli: unknown command \"%s\"\n\n", name.c_str());
    printUsage(stderr);
    return 2;
}
