#include "export/ExportContent.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <algorithm>
#include <filesystem>

#include "export/RenderedSound.h"
#include "library/CoreDater.h"
#include "library/media/Filer.h"
#include "library/media/ImageCache.h"
#include "library/model/Model.h"
#include "library/text/Localized.h"

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

bool readFile(const std::string& path, QByteArray* data) {
    QFile file(q(path));
    if (!file.open(QIODevice::ReadOnly)) return false;
    *data = file.readAll();
    return true;
}

void addWav(std::vector<MailAttachment>& out, const std::string& path) {
    MailAttachment a;
    if (!readFile(path, &a.data)) return;  // a missing file is skipped
    a.mimeType = QStringLiteral("audio/wav");
    a.fileName = QFileInfo(q(path)).fileName();
    out.push_back(std::move(a));
}

void addPhoto(std::vector<MailAttachment>& out, const Sound* sound) {
    if (!Filer::jpgFileExistsForSound(sound)) return;
    const QImage image = Filer::shIns().imageCache().cachedImageWithFilePath(Filer::pathToJpgFileForSound(sound));
    if (image.isNull()) return;
    MailAttachment a;
    QBuffer buffer(&a.data);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "JPG", 100)) return;
    a.mimeType = QStringLiteral("image/jpg");
    a.fileName = q(Filer::jpgf(sound->name()));
    out.push_back(std::move(a));
}

void addDistinct(std::vector<Sound*>& sounds, Loop* loop) {
    if (!loop) return;
    for (Instrument* instrument : loop->instruments()) {
        Sound* s = instrument ? instrument->sound() : nullptr;
        if (s && std::find(sounds.begin(), sounds.end(), s) == sounds.end()) sounds.push_back(s);
    }
}

}  // namespace

ExportContent ExportContent::find(const QString& kind, const QString& name) {
    ExportContent c;
    CoreDater& store = CoreDater::shIns();
    const std::string n = name.toStdString();
    if (kind == "sound") {
        c.sound = static_cast<Sound*>(store.findEntity("Sound", n));
        if (c.sound) c.kind = ExportKind::Sound;
    } else if (kind == "soundFolder") {
        c.soundFolder = static_cast<SoundFolder*>(store.findEntity("SoundFolder", n));
        if (c.soundFolder) c.kind = ExportKind::SoundFolder;
    } else if (kind == "loop") {
        c.loop = static_cast<Loop*>(store.findEntity("Loop", n));
        if (c.loop) c.kind = ExportKind::Loop;
    } else if (kind == "loopFolder") {
        c.loopFolder = static_cast<LoopFolder*>(store.findEntity("LoopFolder", n));
        if (c.loopFolder) c.kind = ExportKind::LoopFolder;
    } else if (kind == "track") {
        c.track = static_cast<Track*>(store.findEntity("Track", n));
        if (c.track) c.kind = ExportKind::Track;
    }
    return c;
}

QString ExportContent::kindName() const {
    switch (kind) {
    case ExportKind::Sound: return QStringLiteral("sound");
    case ExportKind::SoundFolder: return QStringLiteral("soundFolder");
    case ExportKind::Loop: return QStringLiteral("loop");
    case ExportKind::LoopFolder: return QStringLiteral("loopFolder");
    case ExportKind::Track: return QStringLiteral("track");
    case ExportKind::None: break;
    }
    return {};
}

std::string ExportContent::name() const {
    switch (kind) {
    case ExportKind::Sound: return sound->name();
    case ExportKind::SoundFolder: return soundFolder->name();
    case ExportKind::Loop: return loop->name();
    case ExportKind::LoopFolder: return loopFolder->name();
    case ExportKind::Track: return track->name();
    case ExportKind::None: break;
    }
    return {};
}

std::vector<Sound*> ExportContent::folderSounds() const {
    if (kind != ExportKind::SoundFolder) return {};
    return soundFolder->items();
}

std::vector<Sound*> ExportContent::soundsForPhotos() const {
    std::vector<Sound*> sounds;
    if (kind == ExportKind::Loop) addDistinct(sounds, loop);
    if (kind == ExportKind::Track)
        for (TrackLoop* row : track->trackloops()) addDistinct(sounds, row ? row->loop() : nullptr);
    return sounds;
}

QString exportMailSubject(const ExportContent& c, bool video) {
    const QString name = q(c.name());
    switch (c.kind) {
    case ExportKind::Sound: return q(localized("Sound '%@' from 'Quillo'")).replace("%@", name);
    case ExportKind::SoundFolder: return q(localized("Sounds from folder '%@'")).replace("%@", name);
    case ExportKind::Loop:
    case ExportKind::Track:
        if (video) return q(localized("Video '%@' from 'Quillo'")).replace("%@", name);
        return q(localized(c.kind == ExportKind::Loop ? "Loop '%@' from 'Quillo'" : "Track '%@' from 'Quillo'"))
            .replace("%@", name);
    default: break;
    }
    return q(localized("Sounds from 'Quillo'"));
}

QString exportMailBody() {
    return QStringLiteral("%1 \n%2").arg(q(localized("Created in 'Quillo' app")), QLatin1String(kQuilloPage));
}

std::vector<MailAttachment> exportMailAttachments(const ExportContent& c, bool video, bool includePhotos) {
    std::vector<MailAttachment> out;
    if (c.kind == ExportKind::Sound) {
        addWav(out, Filer::pathForSound(c.sound));
        if (includePhotos) addPhoto(out, c.sound);
        return out;
    }
    if (c.kind == ExportKind::SoundFolder) {
        for (Sound* s : c.folderSounds()) {
            addWav(out, Filer::pathForSound(s));
            if (includePhotos) addPhoto(out, s);
        }
        return out;
    }
    if (!c.rendered()) return out;
    if (video) {
        MailAttachment a;
        if (readFile(Filer::pathToTemporaryDocument(Filer::kTempAudvidName), &a.data)) {
            a.mimeType = QStringLiteral("video/quicktime");
            a.fileName = QStringLiteral("%1.mov").arg(q(c.name()));
            out.push_back(std::move(a));
        }
    } else {
        const std::string path = moveRecordingToUniqueSoundFile(c.name());
        if (!path.empty()) addWav(out, path);
    }
    if (includePhotos)
        for (Sound* s : c.soundsForPhotos()) addPhoto(out, s);
    return out;
}

qint64 exportFileBytes(const ExportContent& c) {
    auto size = [](const Sound* s) {
        std::error_code ec;
        auto n = std::filesystem::file_size(Filer::pathForSound(s), ec);
        return ec ? qint64(0) : qint64(n);
    };
    if (c.kind == ExportKind::Sound) return size(c.sound);
    qint64 sum = 0;
    for (Sound* s : c.folderSounds()) sum += size(s);
    return sum;
}

QString fileSizeText(qint64 bytes) {
    if (bytes < 1000) return QStringLiteral("%1 bytes").arg(bytes);
    if (bytes < 1000 * 1000) return QStringLiteral("%1 KB").arg(qRound(bytes / 1000.0));
    if (bytes < qint64(1000) * 1000 * 1000) return QStringLiteral("%1 MB").arg(bytes / 1e6, 0, 'f', 1);
    return QStringLiteral("%1 GB").arg(bytes / 1e9, 0, 'f', 2);
}
