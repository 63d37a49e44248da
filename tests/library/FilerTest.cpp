#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "library/media/Filer.h"
#include "library/media/ImageCache.h"
#include "library/store/LibraryStore.h"
#include "tests/library/LogCapture.h"

namespace fs = std::filesystem;

namespace {

void writeText(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

bool writeJpeg(const std::string& path, int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    return image.save(QString::fromStdString(path), "JPG");
}

class FilerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        root_ = dir_.path().toStdString();
        docs_ = root_ + "/docs";
        res_ = root_ + "/res";
        fs::create_directories(docs_);
        fs::create_directories(res_);
        Filer::setDocumentsDirectory(docs_);
        Filer::setResourceDirectory(res_);
        Filer::setTemporaryDirectory(root_ + "/tmp");
        store_ = LibraryStore::open(root_ + "/fladrix.sqlite", nullptr);
        ASSERT_TRUE(store_);
    }
    void TearDown() override {
        Filer::setDocumentsDirectory("");
        Filer::setResourceDirectory("");
        Filer::setTemporaryDirectory("");
    }
    Sound* sound(const std::string& name, bool preloaded) {
        auto* s = store_->insert<Sound>();
        s->setName(name);
        s->setPreloaded(preloaded);
        return s;
    }

    QTemporaryDir dir_;
    std::string root_, docs_, res_;
    std::unique_ptr<LibraryStore> store_;
};

TEST_F(FilerTest, BuiltInSoundsUseResourcesAndUserSoundsTheLibraryFolder) {
    EXPECT_EQ(Filer::urlForSound(nullptr), res_ + "/Kick.wav");
    Sound* snare = sound("Snare", true);
    EXPECT_EQ(Filer::urlForSound(snare), res_ + "/Snare.wav");
    EXPECT_EQ(Filer::pathToJpgFileForSound(snare), res_ + "/Snare.jpg");
    Sound* mine = sound("My take", false);
    EXPECT_EQ(Filer::pathForSound(mine), docs_ + "/My take.wav");
    EXPECT_EQ(Filer::pathToJpgFileForSound(mine), docs_ + "/My take.jpg");
    EXPECT_EQ(Filer::pathToTemporaryDocument("tempRecording.wav"), root_ + "/tmp/tempRecording.wav");
    EXPECT_TRUE(fs::is_directory(root_ + "/tmp"));
}

TEST(FilerLocations, BuiltInSoundsAreFoundNextToTheProgram) {
    EXPECT_EQ(fs::weakly_canonical(Filer::resourceDirectory()), fs::weakly_canonical(QUILLO_BUILD_SOUNDS_DIR));
}

TEST_F(FilerTest, TheTwoNameFormsKeepDotsAndDifferOnTrailingSlashes) {
    EXPECT_EQ(Filer::wavf("a.b"), "a.b.wav");  // added, never replacing ".b"
    EXPECT_EQ(Filer::jpgf("a.b"), "a.b.jpg");
    EXPECT_EQ(Filer::pathForWavSound("v1.2"), docs_ + "/v1.2.wav");
    EXPECT_EQ(Filer::wavf("a/"), "a.wav");
    EXPECT_EQ(Filer::jpgf("a/"), "a/.jpg");
}

TEST_F(FilerTest, RenameReplacesCopyNeverDoes) {
    writeText(docs_ + "/A.wav", "new");
    writeText(docs_ + "/B.wav", "old");
    LogCapture log;
    EXPECT_TRUE(Filer::renameFile("A.wav", "B.wav"));
    EXPECT_EQ(readText(docs_ + "/B.wav"), "new");
    EXPECT_FALSE(fs::exists(docs_ + "/A.wav"));
    EXPECT_TRUE(log.lines().empty());

    // A rename whose source is gone fails and keeps the destination.
    EXPECT_FALSE(Filer::renameFile("A.wav", "B.wav"));
    EXPECT_EQ(readText(docs_ + "/B.wav"), "new");
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].rfind("Error: ", 0), 0u);

    writeText(docs_ + "/C.wav", "other");
    EXPECT_FALSE(Filer::copyFile(docs_ + "/C.wav", docs_ + "/B.wav"));
    EXPECT_EQ(readText(docs_ + "/B.wav"), "new");
    EXPECT_EQ(readText(docs_ + "/C.wav"), "other");
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[1].rfind("Error: ", 0), 0u);
    EXPECT_TRUE(Filer::copyFile(docs_ + "/C.wav", docs_ + "/D.wav"));
    EXPECT_EQ(readText(docs_ + "/D.wav"), "other");
    EXPECT_TRUE(fs::exists(docs_ + "/C.wav"));
}

TEST_F(FilerTest, DeletingSucceedsOnMissingFilesSilently) {
    LogCapture log;
    EXPECT_TRUE(Filer::deleteFile("Nothing.wav"));
    EXPECT_TRUE(Filer::deleteFileAtPath(root_ + "/no/such/file.jpg"));
    EXPECT_TRUE(Filer::deleteFileFromUrl(root_ + "/missing.wav"));
    EXPECT_TRUE(log.lines().empty());

    writeText(docs_ + "/X.wav", "x");
    EXPECT_TRUE(Filer::deleteFileFromUrl(docs_ + "/X.wav"));
    EXPECT_FALSE(fs::exists(docs_ + "/X.wav"));
    EXPECT_EQ(log.lines(), std::vector<std::string>{"file from url " + docs_ + "/X.wav removed"});
    // A file URL, escapes and all, names the file it points at.
    writeText(docs_ + "/My take #1.wav", "x");
    EXPECT_TRUE(Filer::deleteFileFromUrl("file://" + docs_ + "/My%20take%20%231.wav"));
    EXPECT_FALSE(fs::exists(docs_ + "/My take #1.wav"));
    EXPECT_FALSE(Filer::deleteFileFromUrl("https://example.org/X.wav"));

    for (const char* name : {"tempRecording.wav", "tempGlvid.mov", "tempaudvid.mov", "tempPhoto.jpg"}) {
        writeText(Filer::pathToTemporaryDocument(name), "t");
    }
    Filer::removeTempRecordingsFile();
    EXPECT_FALSE(fs::exists(Filer::pathToTemporaryDocument("tempRecording.wav")));
    EXPECT_FALSE(fs::exists(Filer::pathToTemporaryDocument("tempGlvid.mov")));
    EXPECT_FALSE(fs::exists(Filer::pathToTemporaryDocument("tempaudvid.mov")));
    EXPECT_TRUE(fs::exists(Filer::pathToTemporaryDocument("tempPhoto.jpg")));
}

TEST_F(FilerTest, PhotoCacheDecodesOnceAndFallsBackToThePlaceholder) {
    ASSERT_TRUE(writeJpeg(res_ + "/noimagesound.jpg", 4, 4));
    Sound* mine = sound("No photo", false);
    EXPECT_FALSE(Filer::jpgFileExistsForSound(mine));
    QImage first = ImageCache::jpgFileForSound(mine);
    ASSERT_FALSE(first.isNull());
    EXPECT_EQ(first.size(), QSize(4, 4));
    // The same decoded image every time: the placeholder is decoded once.
    EXPECT_EQ(ImageCache::jpgFileForSound(mine).cacheKey(), first.cacheKey());
    EXPECT_EQ(ImageCache::jpgFileForSound(nullptr).cacheKey(), first.cacheKey());

    ASSERT_TRUE(writeJpeg(docs_ + "/No photo.jpg", 6, 3));
    EXPECT_TRUE(Filer::jpgFileExistsForSound(mine));
    EXPECT_EQ(ImageCache::jpgFileForSound(mine).size(), QSize(6, 3));

    // A broken file gives the placeholder and is not remembered.
    std::string broken = docs_ + "/Broken.jpg";
    writeText(broken, "not a photo");
    {
        LogCapture log;
        EXPECT_EQ(ImageCache::jpgFileForPath(broken).cacheKey(), first.cacheKey());
        EXPECT_TRUE(log.contains("Error: "));
    }
    ASSERT_TRUE(writeJpeg(broken, 8, 2));
    EXPECT_EQ(ImageCache::jpgFileForPath(broken).size(), QSize(8, 2));
}

TEST_F(FilerTest, PhotoCacheKeepsAnEntryUntilUpdatedOrRemoved) {
    ImageCache& cache = Filer::shIns().imageCache();
    std::string photo = Filer::pathToTemporaryDocument("tempPhoto.jpg");
    ASSERT_TRUE(writeJpeg(photo, 5, 5));
    QImage cached = cache.cachedImageWithFilePath(photo);
    ASSERT_TRUE(writeJpeg(photo, 7, 1));
    EXPECT_EQ(cache.cachedImageWithFilePath(photo).cacheKey(), cached.cacheKey());
    cache.updateCashedImageAtPath(photo);
    QImage updated = cache.cachedImageWithFilePath(photo);
    EXPECT_EQ(updated.size(), QSize(7, 1));
    cache.removeCashedImageAtPath(photo);
    EXPECT_NE(cache.cachedImageWithFilePath(photo).cacheKey(), updated.cacheKey());
}

}  // namespace

TEST(FilerScratch, EachProcessHasItsOwnScratchFolderAndDeadOnesAreCleared) {
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    qputenv("TMPDIR", tmp.path().toUtf8());
    Filer::setTemporaryDirectory("");
    // A folder left by a process that no longer runs: a child that has exited.
    pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    const fs::path parent = tmp.path().toStdString() + "/quillo-" + std::to_string(getuid());
    fs::create_directories(parent / std::to_string(child));
    writeText((parent / std::to_string(child) / "tempRecording.wav").string(), "stale");

    // The parent's scratch folder, then a forked child's: different folders.
    const std::string mine = Filer::temporaryDirectory();
    EXPECT_EQ(mine, (parent / std::to_string(getpid())).string());
    EXPECT_FALSE(fs::exists(parent / std::to_string(child)));
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    pid_t other = fork();
    if (other == 0) {
        const std::string theirs = Filer::pathToTemporaryDocument(Filer::kTempRecordingName);
        _exit(write(fds[1], theirs.data(), theirs.size()) > 0 ? 0 : 1);
    }
    close(fds[1]);
    char path[4096] = {};
    ASSERT_GT(read(fds[0], path, sizeof path - 1), 0);
    close(fds[0]);
    waitpid(other, nullptr, 0);
    EXPECT_EQ(std::string(path), (parent / std::to_string(other) / "tempRecording.wav").string());
    EXPECT_TRUE(fs::is_directory(mine));  // the child's exit does not remove the parent's folder
    qunsetenv("TMPDIR");
}
