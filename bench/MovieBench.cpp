// Movie writing costs: encoding one filmed frame at each export picture size
// of a 390 x 844 window, and joining a 60-second track's audio with its still
// movie (the pass-through copy the export makes before saving or mailing).
#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "BenchFolder.h"
#include "export/movie/encoder/MediaAsset.h"
#include "export/movie/encoder/MovieComposition.h"
#include "export/movie/encoder/MovieFileWriter.h"

namespace fs = std::filesystem;

namespace {

BenchFolder& folder() {
    static BenchFolder f("quillo-moviebench");
    return f;
}

// The export picture of a W x H window, as the export screen lays it out:
// between the bottom of the name label (0.18 H) and the top of the send
// button (0.7 H), 80% of that gap tall (9:16), square, or full width (16:9);
// the width rounded up to a multiple of 16 with the height following it.
// TODO(integration): take this from Framr::ffExportLoopAllInstrV once it is in.
QSize exportPicture(int format, double W = 390, double H = 844) {
    const double ratio = 1.7777777777777777;
    const double gap = 0.7 * H - (0.1 * H + 0.08 * H);
    double width = 0, height = 0;
    if (format == 0) {
        height = 0.8 * gap;
        width = height / ratio;
    } else if (format == 1) {
        width = height = std::min(0.8 * gap, W);
    } else {
        width = W;
        height = std::min(W / ratio, 0.8 * gap);
    }
    const int w = int(width);
    if (w % 16 != 0) {
        width = (w / 16) * 16 + 16;
        height = format == 0 ? width * ratio : format == 1 ? width : width / ratio;
    }
    return QSize(int(width), int(height));  // 208 x 369, 352 x 352, 400 x 225
}

// Eight snapshots of a grid of eight coloured tiles, a different pair shrunk
// in each, as a playing loop looks.
std::vector<QImage> snapshots(QSize size) {
    std::vector<QImage> frames;
    for (int f = 0; f < 8; ++f) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(30, 30, 36));
        QPainter painter(&image);
        const double cw = size.width() / 2.0, ch = size.height() / 4.0;
        for (int i = 0; i < 8; ++i) {
            const double s = (i == f || i == (f + 3) % 8) ? 0.7 : 1.0;
            const QRectF cell((i % 2) * cw, (i / 2) * ch, cw, ch);
            const QRectF tile(cell.center().x() - cw * s * 0.45, cell.center().y() - ch * s * 0.45, cw * s * 0.9,
                              ch * s * 0.9);
            painter.fillRect(tile, QColor::fromHsv(i * 45, 160, 220));
        }
        frames.push_back(image);
    }
    return frames;
}

void BM_EncodeFilmedFrame(benchmark::State& state) {
    const QSize size = exportPicture(int(state.range(0)));
    const std::vector<QImage> frames = snapshots(size);
    MovieWriterSettings settings;
    settings.width = size.width();
    settings.height = size.height();
    std::string error;
    auto writer = MovieFileWriter::create(folder().path + "/encode.mov", settings, &error);
    if (!writer || !writer->startWriting()) {
        state.SkipWithError(error.c_str());
        return;
    }
    int64_t n = 0;
    for (auto _ : state) {
        const QImage& image = frames[size_t(n % 8)];
        // One snapshot every 50 ms, replayed at 5/6 of that: 25 ticks of 1/600 s.
        writer->appendFrame({image.constBits(), image.width(), image.height(), int(image.bytesPerLine())},
                            MediaTime::make(n * 25, 600));
        ++n;
    }
    writer->finishWriting();  // after the timed loop
    state.SetLabel(std::to_string(writer->width()) + "x" + std::to_string(writer->height()));
    state.counters["frames/s"] = benchmark::Counter(double(n), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_EncodeFilmedFrame)->ArgName("format")->Arg(0)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

// A 60 s stereo capture and a still movie of the same length.
void prepareSixtySecondTrack(const std::string& wav, const std::string& mov) {
    SF_INFO info{0, 44100, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0, 0};
    SNDFILE* f = sf_open(wav.c_str(), SFM_WRITE, &info);
    std::vector<int16_t> second(2 * 44100);
    uint32_t x = 1;
    for (int s = 0; s < 60; ++s) {
        for (int16_t& v : second) v = int16_t((x = x * 1664525u + 1013904223u) >> 18) - 8192;
        sf_writef_short(f, second.data(), 44100);
    }
    sf_close(f);

    const QSize size = exportPicture(0);
    MovieWriterSettings settings;
    settings.width = size.width();
    settings.height = size.height();
    settings.timescale = 44100;
    std::string error;
    auto writer = MovieFileWriter::create(mov, settings, &error);
    writer->startWriting();
    const QImage image = snapshots(size)[0];
    writer->appendFrame({image.constBits(), image.width(), image.height(), int(image.bytesPerLine())},
                        MediaTime::make(0, 44100));
    writer->finishWriting(MediaTime::make(60 * 44100, 44100));
}

void BM_JoinSixtySecondTrack(benchmark::State& state) {
    const std::string wav = folder().path + "/track.wav", mov = folder().path + "/still.mov";
    const std::string out = folder().path + "/joined.mov";
    prepareSixtySecondTrack(wav, mov);
    for (auto _ : state) {
        std::string error;
        auto audio = MediaAsset::open(wav, &error);
        auto video = MediaAsset::open(mov, &error);
        MovieComposition composition;
        composition.insertTrack(*audio, audio->firstTrack(MediaKind::Audio), &error);
        composition.insertTrack(*video, video->firstTrack(MediaKind::Video), &error);
        if (!composition.exportPassthrough(out, true, &error)) {
            state.SkipWithError(error.c_str());
            return;
        }
    }
    state.counters["x real time"] =
        benchmark::Counter(60.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["MB"] = double(fs::file_size(out)) / 1e6;
}
BENCHMARK(BM_JoinSixtySecondTrack)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
