// quillo-resgen: renders Quillo's built-in sounds and paints their photos.
//
// Soundfont sounds are written as tiny MIDI files, rendered by the fluidsynth
// program (several at a time) and finished here; the rest are synthesised.
// The same inputs always give byte-identical files.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <QGuiApplication>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "library/util/Log.h"
#include "resources/generator/Effects.h"
#include "resources/generator/MidiFile.h"
#include "resources/generator/PhotoPainter.h"
#include "resources/generator/SoundFinisher.h"
#include "resources/generator/SoundTable.h"

extern char** environ;

namespace fs = std::filesystem;
using namespace resgen;

namespace {

const char* const kPlaceholder = "noimagesound.jpg";

struct Options {
    fs::path out;
    fs::path work;
    std::string soundfont;
    std::string fluidsynth = "fluidsynth";
    unsigned jobs = 2;
    std::vector<std::string> only;
    fs::path stamp;
};

void printUsage(FILE* to) {
    std::fprintf(to,
                 "usage: quillo-resgen --out DIR --work DIR --soundfont FILE [options]\n\n"
                 "Writes every built-in sound as \"<name>.wav\" and its photo as \"<name>.jpg\" into DIR,\n"
                 "with the placeholder photo \"%s\".\n\n"
                 "options:\n"
                 "  --fluidsynth PROGRAM   the soundfont renderer (default: fluidsynth on PATH)\n"
                 "  --jobs N               renders at a time (default 2)\n"
                 "  --only NAME            make only this sound (repeatable); leaves other files alone\n"
                 "  --stamp FILE           touched when everything was written\n",
                 kPlaceholder);
}

bool parseOptions(int argc, char** argv, Options& o) {
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "-h" || a == "--help") {
            printUsage(stdout);
            std::exit(0);
        }
        if (i + 1 >= argc) {
            std::fprintf(stderr, "quillo-resgen: %s needs a value\n", a.c_str());
            return false;
        }
        const std::string v = argv[++i];
        if (a == "--out") o.out = v;
        else if (a == "--work") o.work = v;
        else if (a == "--soundfont") o.soundfont = v;
        else if (a == "--fluidsynth") o.fluidsynth = v;
        else if (a == "--jobs") o.jobs = unsigned(std::max(1, std::atoi(v.c_str())));
        else if (a == "--only") o.only.push_back(v);
        else if (a == "--stamp") o.stamp = v;
        else {
            std::fprintf(stderr, "quillo-resgen: unknown option %s\n", a.c_str());
            return false;
        }
    }
    if (o.out.empty() || o.work.empty() || o.soundfont.empty()) {
        printUsage(stderr);
        return false;
    }
    return true;
}

bool runProgram(const std::vector<std::string>& args, std::string& error) {
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        error = "cannot start " + args[0] + ": " + std::strerror(rc);
        return false;
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            error = "lost " + args[0];
            return false;
        }
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        error = args[0] + " failed";
        return false;
    }
    return true;
}

bool writeBytes(const fs::path& path, const std::vector<uint8_t>& bytes) {
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    f.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    return bool(f);
}

bool makeSound(const Options& o, const SoundSpec& sound, size_t index, std::string& error) {
    Audio audio;
    if (sound.effect != Effect::None) {
        audio = synthesiseEffect(sound.effect);
    } else {
        const fs::path midi = o.work / (std::to_string(index) + ".mid");
        const fs::path raw = o.work / (std::to_string(index) + ".wav");
        if (!writeBytes(midi, midiFileForSound(sound))) {
            error = midi.string() + ": cannot write";
            return false;
        }
        // Float output: no dither, no clipping; the finisher sets the level.
        if (!runProgram({o.fluidsynth, "-ni", "-q", "-g", "1.0", "-r", "44100", "-T", "wav", "-O", "float", "-F",
                         raw.string(), o.soundfont, midi.string()},
                        error)) {
            return false;
        }
        const bool read = readAudio(raw.string(), audio, error);
        fs::remove(midi);
        fs::remove(raw);
        if (!read) return false;
    }
    if (!finishSound(audio, sound.maxSeconds, error)) return false;
    return writeWav16(audio, (o.out / (sound.name + ".wav")).string(), error);
}

// Removes generated files whose sound is no longer in the table.
void removeStaleFiles(const fs::path& out, const std::vector<const SoundSpec*>& sounds) {
    std::set<std::string> keep = {kPlaceholder};
    for (const SoundSpec* s : sounds) {
        keep.insert(s->name + ".wav");
        keep.insert(s->name + ".jpg");
    }
    for (const fs::directory_entry& e : fs::directory_iterator(out)) {
        const std::string ext = e.path().extension().string();
        const std::string name = e.path().filename().string();
        if (e.is_regular_file() && (ext == ".wav" || ext == ".jpg" || ext == ".part") && !keep.count(name)) {
            fs::remove(e.path());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    Options o;
    if (!parseOptions(argc, argv, o)) return 2;
    const auto started = std::chrono::steady_clock::now();

    std::vector<const SoundSpec*> sounds;
    for (const SoundSpec& s : soundTable()) {
        if (o.only.empty() || std::find(o.only.begin(), o.only.end(), s.name) != o.only.end()) sounds.push_back(&s);
    }
    if (!o.only.empty() && sounds.size() != o.only.size()) {
        std::fprintf(stderr, "quillo-resgen: --only names a sound that is not built in\n");
        return 2;
    }
    std::error_code ec;
    fs::create_directories(o.out, ec);
    fs::create_directories(o.work, ec);
    if (!fs::is_directory(o.out) || !fs::is_directory(o.work)) {
        std::fprintf(stderr, "quillo-resgen: cannot create %s or %s\n", o.out.c_str(), o.work.c_str());
        return 1;
    }
    if (!o.stamp.empty()) fs::remove(o.stamp, ec);

    // Sounds on worker threads (each mostly waits for its renderer) ...
    std::atomic<size_t> next{0};
    std::mutex errorsLock;
    std::vector<std::string> errors;
    std::vector<std::thread> workers;
    for (unsigned w = 0; w < std::min<size_t>(o.jobs, sounds.size()); ++w) {
        workers.emplace_back([&] {
            for (size_t i = next++; i < sounds.size(); i = next++) {
                std::string error;
                if (!makeSound(o, *sounds[i], i, error)) {
                    std::lock_guard<std::mutex> lock(errorsLock);
                    errors.push_back(sounds[i]->name + ": " + error);
                }
            }
        });
    }

    // ... photos on the main thread, which owns the GUI application.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        const fs::path runtime = o.work / "runtime";
        fs::create_directories(runtime, ec);
        fs::permissions(runtime, fs::perms::owner_all, ec);
        qputenv("XDG_RUNTIME_DIR", QByteArray(runtime.c_str()));
    }
    int qtArgc = 1;
    char* qtArgv[] = {argv[0], nullptr};
    QGuiApplication app(qtArgc, qtArgv);
    std::vector<std::string> photoErrors;
    for (const SoundSpec* s : sounds) {
        std::string error;
        if (!saveJpeg(paintSoundPhoto(*s), (o.out / (s->name + ".jpg")).string(), error)) photoErrors.push_back(error);
    }
    std::string error;
    if (!saveJpeg(paintPlaceholderPhoto(), (o.out / kPlaceholder).string(), error)) photoErrors.push_back(error);

    for (std::thread& t : workers) t.join();
    errors.insert(errors.end(), photoErrors.begin(), photoErrors.end());
    if (!errors.empty()) {
        for (const std::string& e : errors) qlog("quillo-resgen: %s", e.c_str());
        return 1;
    }
    if (o.only.empty()) removeStaleFiles(o.out, sounds);
    if (!o.stamp.empty()) std::ofstream(o.stamp) << "generated\n";

    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    qlog("quillo-resgen: %zu sounds and %zu photos in %.1f s", sounds.size(), sounds.size() + 1, seconds);
    return 0;
}
