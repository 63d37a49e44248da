#include "library/media/ImageCache.h"

#include <QImageReader>
#include <QString>
#include <filesystem>

#include "library/media/Filer.h"
#include "library/util/Log.h"

QImage ImageCache::cachedImageWithFilePath(const std::string& path) {
    if (auto it = images_.find(path); it != images_.end()) return it->second;
    QImage image;
    if (!decode(path, &image)) return fallbackFor(path);
    images_.emplace(path, image);
    return image;
}

void ImageCache::updateCashedImageAtPath(const std::string& path) {
    images_.erase(path);
    QImage image;
    if (decode(path, &image)) images_.emplace(path, image);
}

void ImageCache::removeCashedImageAtPath(const std::string& path) { images_.erase(path); }

QImage ImageCache::jpgFileForSound(const Sound* sound) {
    if (!sound) return placeholderImage();
    return jpgFileForPath(Filer::pathToJpgFileForSound(sound));
}

QImage ImageCache::jpgFileForPath(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return placeholderImage();
    return Filer::shIns().imageCache().cachedImageWithFilePath(path);
}

QImage ImageCache::placeholderImage() {
    return Filer::shIns().imageCache().cachedImageWithFilePath(placeholderPath());
}

std::string ImageCache::placeholderPath() { return Filer::pathForResource("noimagesound", "jpg"); }

bool ImageCache::decode(const std::string& path, QImage* image) const {
    // The format is taken from the content, not the name: a photo saved under
    // ".jpg" in another format still shows.
    QImageReader reader(QString::fromStdString(path));
    if (reader.read(image)) return true;
    qlog("Error: the photo \"%s\" could not be read (%s)", path.c_str(), reader.errorString().toUtf8().constData());
    return false;
}

QImage ImageCache::fallbackFor(const std::string& path) {
    // The placeholder stands in for a broken photo; a broken placeholder has
    // nothing left to stand in for it.
    if (path == placeholderPath()) return QImage();
    return placeholderImage();
}
