// The built-in photos: one decodable 320 x 320 JPEG per sound plus the
// placeholder, and no two alike.
#include <gtest/gtest.h>

#include <QImage>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/resources/BuiltinNames.h"

TEST(BuiltinPhotos, EverySoundHasItsOwnPhoto) {
    std::vector<std::string> files;
    for (const std::string& name : builtinSoundNames()) files.push_back(name + ".jpg");
    files.push_back("noimagesound.jpg");

    // Compared on 32 x 32 thumbnails: two photos that differ only in a few
    // pixels would not tell two sounds apart on screen.
    std::vector<QImage> thumbs;
    for (const std::string& file : files) {
        QImage photo(QString::fromStdString(soundsDir() + "/" + file));
        ASSERT_FALSE(photo.isNull()) << file << " does not decode";
        EXPECT_EQ(photo.width(), 320) << file;
        EXPECT_EQ(photo.height(), 320) << file;
        thumbs.push_back(photo.scaled(32, 32, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_RGB888));
    }
    auto meanDifference = [](const QImage& a, const QImage& b) {
        double sum = 0;
        for (int y = 0; y < a.height(); ++y) {
            const uchar* pa = a.constScanLine(y);
            const uchar* pb = b.constScanLine(y);
            for (int x = 0; x < a.width() * 3; ++x) sum += std::abs(int(pa[x]) - int(pb[x]));
        }
        return sum / (a.width() * a.height() * 3);
    };
    double closest = 1e9;
    for (size_t i = 0; i < thumbs.size(); ++i) {
        for (size_t j = i + 1; j < thumbs.size(); ++j) {
            const double d = meanDifference(thumbs[i], thumbs[j]);
            closest = std::min(closest, d);
            EXPECT_GT(d, 4.0) << files[i] << " looks like " << files[j];
        }
    }
    RecordProperty("closestPhotoDifference", std::to_string(closest));

    // The placeholder is neutral grey throughout.
    const QImage& placeholder = thumbs.back();
    for (int y = 0; y < placeholder.height(); ++y) {
        for (int x = 0; x < placeholder.width(); ++x) {
            const QColor c = placeholder.pixelColor(x, y);
            ASSERT_LT(std::abs(c.red() - c.green()) + std::abs(c.green() - c.blue()), 8) << x << "," << y;
        }
    }
}
