#include "library/media/Filer.h"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include <QDir>
#include <QStandardPaths>
#include <QString>
#include <QUrl>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "engine/AudioController.h"
#include "engine/AudioFileLoaderOperation.h"
#include "library/media/ImageCache.h"
#include "library/model/Model.h"
#include "library/util/Log.h"

namespace fs = std::filesystem;

namespace {

// Locations chosen by the program (or tests); empty means "the default".
struct Locations {
    std::string documents;
    std::string resources;
    std::string temporary;
};

Locations& locations() {
    static Locations l;
    return l;
}

// "~/x" as typed in an environment variable.
std::string expandTilde(const std::string& path) {
    if (path == "~" || path.rfind("~/", 0) == 0) {
        if (const char* home = std::getenv("HOME"); home && *home) return home + path.substr(1);
    }
    return path;
}

// The folder joined with a name, as one path component below it.
std::string joinPath(const std::string& folder, const std::string& name) {
    std::string dir = folder;
    while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
    size_t start = name.find_first_not_of('/');
    if (start == std::string::npos) return dir;
    if (dir.empty()) return name.substr(start);
    if (dir == "/") return "/" + name.substr(start);
    return dir + "/" + name.substr(start);
}

std::string executableFolder() {
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string(".") : exe.parent_path().string();
}

bool existsAt(const std::string& path) {
    std::error_code ec;
    return !path.empty() && fs::exists(fs::symlink_status(path, ec));
}

void logError(const char* what, const std::string& from, const std::string& to, const std::error_code& ec) {
    if (to.empty()) qlog("Error: %s \"%s\": %s", what, from.c_str(), ec.message().c_str());
    else qlog("Error: %s \"%s\" to \"%s\": %s", what, from.c_str(), to.c_str(), ec.message().c_str());
}

// Removes the file, or reports why not; nothing there counts as removed.
bool removePath(const std::string& path, std::error_code* error) {
    if (!existsAt(path)) return true;
    std::error_code ec;
    fs::remove(path, ec);
    *error = ec;
    return !ec;
}

}  // namespace

Filer::Filer() : imageCache_(std::make_unique<ImageCache>()) {}
Filer::~Filer() = default;

Filer& Filer::shIns() {
    static Filer instance;
    return instance;
}

ImageCache& Filer::imageCache() { return *imageCache_; }

std::string Filer::defaultDocumentsDirectory() {
    if (const char* env = std::getenv("QUILLO_LIBRARY"); env && *env) return expandTilde(env);
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir(base).filePath("Quillo").toStdString();
}

void Filer::setDocumentsDirectory(const std::string& path) { locations().documents = expandTilde(path); }

std::string Filer::documentsDirectory() {
    const std::string& set = locations().documents;
    return set.empty() ? defaultDocumentsDirectory() : set;
}

void Filer::setResourceDirectory(const std::string& path) { locations().resources = path; }

std::string Filer::resourceDirectory() {
    const std::string& set = locations().resources;
    if (!set.empty()) return set;
    return (fs::path(executableFolder()) / ".." / "share" / "quillo" / "sounds").lexically_normal().string();
}

void Filer::setTemporaryDirectory(const std::string& path) { locations().temporary = path; }

namespace {

// Removes this process's scratch folder when the program ends (not in a
// forked child, whose parent still uses it).
struct ProcessScratch {
    std::string path;
    pid_t owner = 0;
    ~ProcessScratch() {
        if (path.empty() || owner != ::getpid()) return;
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

ProcessScratch& processScratch() {
    static ProcessScratch scratch;
    return scratch;
}

// Scratch folders of processes that no longer run (killed, crashed).
void removeStaleScratchFolders(const fs::path& parent) {
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(parent, ec)) {
        const std::string name = entry.path().filename().string();
        char* end = nullptr;
        const long pid = std::strtol(name.c_str(), &end, 10);
        if (pid <= 0 || !end || *end != '\0' || pid == ::getpid()) continue;
        if (::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
        std::error_code ignored;
        fs::remove_all(entry.path(), ignored);
    }
}

}  // namespace

std::string Filer::temporaryDirectory() {
    std::string dir = locations().temporary;
    if (dir.empty()) {
        ProcessScratch& scratch = processScratch();
        if (scratch.owner != ::getpid()) {
            // First use in this process (or in a forked child): a folder of its own.
            QString base = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
            const fs::path parent = QDir(base).filePath(QString("quillo-%1").arg(::getuid())).toStdString();
            std::error_code ec;
            fs::create_directories(parent, ec);
            fs::permissions(parent, fs::perms::owner_all, ec);
            removeStaleScratchFolders(parent);
            scratch.path = (parent / std::to_string(::getpid())).string();
            scratch.owner = ::getpid();
        }
        dir = scratch.path;
    }
    std::error_code ec;
    if (!fs::is_directory(dir, ec)) {
        fs::create_directories(dir, ec);
        if (!ec) fs::permissions(dir, fs::perms::owner_all, ec);
        if (ec) logError("could not create the temporary folder", dir, "", ec);
    }
    return dir;
}

std::string Filer::pathForResource(const std::string& name, const std::string& type) {
    return joinPath(resourceDirectory(), name + "." + type);
}

std::string Filer::urlForSound(const Sound* sound) {
    if (!sound) return pathForResource("Kick", "wav");
    return pathForSound(sound);
}

std::string Filer::pathForSound(const Sound* sound) {
    if (!sound) return pathForResource("Kick", "wav");
    if (sound->preloaded()) return pathForResource(sound->name(), "wav");
    return pathForWavSound(sound->name());
}

std::string Filer::pathForWavSound(const std::string& name) { return pathToDocument(wavf(name)); }

std::string Filer::urlForUsersSoundWithName(const std::string& name) { return pathForWavSound(name); }

std::string Filer::wavf(const std::string& name) {
    std::string stem = name;
    while (stem.size() > 1 && stem.back() == '/') stem.pop_back();
    return stem + ".wav";
}

std::string Filer::jpgf(const std::string& name) { return name + ".jpg"; }

std::string Filer::pathToDocument(const std::string& fileName) { return joinPath(documentsDirectory(), fileName); }

std::string Filer::pathToTemporaryDocument(const std::string& fileName) {
    return joinPath(temporaryDirectory(), fileName);
}

std::string Filer::pathToJpgFileForSound(const Sound* sound) {
    if (!sound) return std::string();
    if (sound->preloaded()) return pathForResource(sound->name(), "jpg");
    return pathToDocument(jpgf(sound->name()));
}

bool Filer::jpgFileExistsForSound(const Sound* sound) {
    std::error_code ec;
    std::string path = pathToJpgFileForSound(sound);
    return !path.empty() && fs::exists(path, ec);
}

bool Filer::renameFile(const std::string& fromName, const std::string& toName) {
    return renameFileFromPath(pathToDocument(fromName), pathToDocument(toName));
}

bool Filer::renameFileFromPath(const std::string& fromPath, const std::string& toPath) {
    std::error_code ec;
    if (!existsAt(fromPath)) {
        // Checked first so that a failing rename never costs the destination.
        logError("could not move", fromPath, toPath, std::make_error_code(std::errc::no_such_file_or_directory));
        return false;
    }
    if (std::error_code same; fs::equivalent(fromPath, toPath, same)) return true;
    if (!removePath(toPath, &ec)) {
        logError("could not replace", toPath, "", ec);
        return false;
    }
    fs::rename(fromPath, toPath, ec);
    if (ec == std::errc::cross_device_link) {
        // The temporary folder may be on another file system than the library.
        ec.clear();
        fs::copy_file(fromPath, toPath, fs::copy_options::none, ec);
        if (!ec) {
            std::error_code ignored;
            fs::remove(fromPath, ignored);
        }
    }
    if (ec) {
        logError("could not move", fromPath, toPath, ec);
        return false;
    }
    return true;
}

bool Filer::deleteFile(const std::string& name) { return deleteFileAtPath(pathToDocument(name)); }

bool Filer::deleteFileAtPath(const std::string& path) {
    std::error_code ec;
    if (removePath(path, &ec)) return true;
    logError("could not remove", path, "", ec);
    return false;
}

std::string Filer::pathFromUrl(const std::string& url) {
    if (url.rfind("file:", 0) == 0) {
        QUrl u(QString::fromStdString(url));
        return u.isLocalFile() ? u.toLocalFile().toStdString() : std::string();
    }
    if (url.find("://") != std::string::npos) return std::string();
    return url;
}

bool Filer::deleteFileFromUrl(const std::string& url) {
    const std::string path = pathFromUrl(url);
    if (path.empty()) {
        logError("could not remove", url, "", std::make_error_code(std::errc::invalid_argument));
        return false;
    }
    if (!existsAt(path)) return true;
    std::error_code ec;
    if (!removePath(path, &ec)) {
        logError("could not remove", url, "", ec);
        return false;
    }
    qlog("file from url %s removed", url.c_str());
    return true;
}

bool Filer::copyFile(const std::string& fromUrl, const std::string& toUrl) {
    std::error_code ec;
    if (existsAt(toUrl)) ec = std::make_error_code(std::errc::file_exists);
    else fs::copy_file(fromUrl, toUrl, fs::copy_options::none, ec);
    if (ec) {
        logError("could not copy", fromUrl, toUrl, ec);
        return false;
    }
    return true;
}

void Filer::removeTempRecordingsFile() {
    for (const char* name : {kTempRecordingName, kTempGlvidName, kTempAudvidName}) {
        std::error_code ignored;
        fs::remove(pathToTemporaryDocument(name), ignored);
    }
}

namespace {
AudioController* loadingController = nullptr;
}

void Filer::setAudioController(AudioController* controller) { loadingController = controller; }

std::shared_ptr<AudioFileLoaderOperation> Filer::operationWithFileURL(const std::string& url) {
    AudioStreamDescription target{};
    if (loadingController) target = loadingController->audioDescription();
    auto operation = std::make_shared<AudioFileLoaderOperation>(url, target);
    operation->start();
    if (operation->error()) {
        qlog("load error: %s", operation->error()->localizedDescription.c_str());
        return nullptr;
    }
    return operation;
}

void Filer::freeBufList(AudioBufferList* list) {
    if (!list) return;
    // The engine's format is non-interleaved stereo: always buffers 0 and 1.
    for (int b = 0; b < 2; ++b) {
        if (list->mBuffers[b].mData) std::free(list->mBuffers[b].mData);
        else qlog("dont need free");
    }
    std::free(list);
}
