#include "app/window/ScreenshotRunner.h"

#include <QDir>
#include <QEventLoop>
#include <QImage>
#include <QQuickWindow>
#include <QTimer>
#include <cstdio>

namespace {
void settle(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}
}  // namespace

bool ScreenshotRunner::run(const QString& folder) {
    bool ok = QDir().mkpath(folder);
    for (const Screenshot& shot : shots_) {
        QQuickWindow* window = shot.prepare ? shot.prepare() : nullptr;
        if (!window) {
            std::fprintf(stderr, "screenshot %s: no window\n", qPrintable(shot.name));
            ok = false;
            continue;
        }
        settle(shot.settleMs);
        const QString path = QDir(folder).filePath(shot.name + QStringLiteral(".png"));
        const QImage image = window->grabWindow();
        if (image.isNull() || !image.save(path)) {
            std::fprintf(stderr, "screenshot %s: could not write %s\n", qPrintable(shot.name), qPrintable(path));
            ok = false;
            continue;
        }
        std::printf("%s\n", qPrintable(path));
    }
    return ok;
}
