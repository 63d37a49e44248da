#include "app/cli/CliSession.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "app/cli/NameMatch.h"
#include "library/CoreDater.h"
#include "library/content/OpenedLibrary.h"
#include "library/model/Model.h"

CliSession::CliSession(const CliContext& context, AudioDriverKind driver, LibraryAccess access) {
    AppDelegateOptions options;
    options.libraryFolder = context.libraryFolder;
    options.driver = driver;
    options.mainThread = &mainThread;
    options.access = access;
    app = std::make_unique<AppDelegate>(options);
    if (!app->didFinishLaunching()) {
        const LibraryOpenError error = app->libraryError();
        app.reset();
        std::fprintf(stderr, "quillo-cli: %s\n", error.message.c_str());
        std::exit(error.exitCode);
    }
}

CliSession::~CliSession() { app.reset(); }

std::unique_ptr<OpenedLibrary> openLibraryForReading(const CliContext& context) {
    LibraryOpenError error;
    auto library = OpenedLibrary::open(context.libraryFolder, LibraryAccess::Read, &error);
    if (!library) {
        std::fprintf(stderr, "quillo-cli: %s\n", error.message.c_str());
        std::exit(error.exitCode);
    }
    return library;
}

namespace {
template <class T>
T* named(const char* entity, const char* kind, const std::string& name) {
    if (auto* o = CoreDater::shIns().findEntity(entity, name)) return static_cast<T*>(o);
    std::vector<std::string> names;
    for (ManagedObject* o : CoreDater::shIns().getAllItemsOfEntity(entity)) names.push_back(static_cast<T*>(o)->name());
    std::fprintf(stderr, "%s\n", unknownNameMessage(kind, name, names).c_str());
    return nullptr;
}
}  // namespace

Loop* CliSession::loopNamed(const std::string& name) { return named<Loop>("Loop", "loop", name); }
Track* CliSession::trackNamed(const std::string& name) { return named<Track>("Track", "track", name); }
Sound* CliSession::soundNamed(const std::string& name) { return named<Sound>("Sound", "sound", name); }

ProgressLine::ProgressLine() : terminal_(isatty(STDOUT_FILENO)) {}

void ProgressLine::update(double fraction) {
    if (!terminal_) return;
    int percent = static_cast<int>(fraction * 100.0);
    if (percent == shown_) return;
    shown_ = percent;
    int filled = percent * 40 / 100;
    std::printf("\r[%-40s] %3d%%", std::string(static_cast<size_t>(filled), '#').c_str(), percent);
    std::fflush(stdout);
}

void ProgressLine::finish() {
    if (terminal_ && shown_ >= 0) std::printf("\r%60s\r", "");
}
