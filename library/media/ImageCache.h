#pragma once
// The decoded photos of sounds, kept in memory by file path.
//
// The one cache is owned by Filer::shIns() (Filer::shIns().imageCache()).
// Entries stay until they are removed or replaced; there is no size limit.
// A file that cannot be read or decoded is never cached: asking for it gives
// the placeholder photo and a log line, so a good file written to the same
// path later is decoded then. Main thread only, like every QImage user here.
#include <QImage>
#include <string>
#include <unordered_map>

class Sound;

class ImageCache {
public:
    // The cached image of the file; on a miss the file is decoded and kept.
    QImage cachedImageWithFilePath(const std::string& path);
    // Drops the entry and decodes the file again (after the file changed).
    void updateCashedImageAtPath(const std::string& path);
    void removeCashedImageAtPath(const std::string& path);

    // A sound's photo through the cache; the placeholder when there is no
    // sound or it has no photo file.
    static QImage jpgFileForSound(const Sound* sound);
    // The cached image of the file if the file exists, else the placeholder.
    static QImage jpgFileForPath(const std::string& path);
    // The built-in "noimagesound" photo, decoded once. A null image if even
    // that resource is missing or broken.
    static QImage placeholderImage();
    static std::string placeholderPath();

private:
    bool decode(const std::string& path, QImage* image) const;
    QImage fallbackFor(const std::string& path);

    std::unordered_map<std::string, QImage> images_;
};
