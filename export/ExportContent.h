#pragma once
// The one library item the export screen shares, and what its mail holds:
// subject, body and attachments by kind of item.
#include <QString>
#include <string>
#include <vector>

#include "export/mail/MailMessage.h"

class Loop;
class LoopFolder;
class Sound;
class SoundFolder;
class Track;

enum class ExportKind { None, Sound, SoundFolder, Loop, LoopFolder, Track };

struct ExportContent {
    ExportKind kind = ExportKind::None;
    Sound* sound = nullptr;
    SoundFolder* soundFolder = nullptr;
    Loop* loop = nullptr;
    LoopFolder* loopFolder = nullptr;
    Track* track = nullptr;

    // By the screen's kind name ("sound", "soundFolder", "loop", "loopFolder",
    // "track") and the item's name; kind None when there is no such item.
    static ExportContent find(const QString& kind, const QString& name);
    std::string name() const;
    // The screen's kind name ("sound", "soundFolder", ...); empty for None.
    QString kindName() const;
    bool rendered() const { return kind == ExportKind::Loop || kind == ExportKind::Track; }
    // The sounds a folder holds (none for other kinds).
    std::vector<Sound*> folderSounds() const;
    // The distinct sounds whose photos go with a loop or track, in order.
    std::vector<Sound*> soundsForPhotos() const;
};

QString exportMailSubject(const ExportContent& content, bool video);
// "Created in 'Quillo' app" and the link to Quillo's page.
QString exportMailBody();
inline constexpr const char* kQuilloPage = "https://quillo.app";

// The attachments of the item's mail. For a rendered loop or track without
// video the scratch recording is first moved into the library folder under a
// unique sound name (no sound is created for it). Missing files are skipped.
std::vector<MailAttachment> exportMailAttachments(const ExportContent& content, bool video, bool includePhotos);

// The sum of the WAV file sizes of a sound or a folder's sounds.
qint64 exportFileBytes(const ExportContent& content);
// A byte count as a file size: "512 bytes", "12 KB", "3.4 MB".
QString fileSizeText(qint64 bytes);
