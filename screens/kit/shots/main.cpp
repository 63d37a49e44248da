// Renders the kit's controls in their main states to PNG files, offscreen:
//   quillo-kit-shots DIR
// Animations run on a manual clock, so a "start" and an "end" picture show
// exactly the first and the last frame of a move.
#include <QDir>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <cstdio>

#include "screens/kit/KitSetup.h"
#include "screens/kit/internal/ManualAnimationClock.h"

namespace {

struct Shot {
    const char* file;
    const char* scene;
    int width, height;
    int afterMs;  // clock advance after the scene is set up
};

constexpr Shot kShots[] = {
    {"kit-adjuster-small.png", "small", 390, 844, 400},
    {"kit-adjuster-enlarged.png", "enlarged", 390, 844, 400},
    {"kit-volume-fill.png", "volumes", 390, 844, 400},
    {"kit-circle-move-start.png", "circle", 390, 844, 0},
    {"kit-circle-move-middle.png", "circle", 390, 844, 150},
    {"kit-circle-move-end.png", "circle", 390, 844, 400},
    {"kit-adjusters-desktop.png", "small", 1280, 800, 400},
    {"kit-adjusters-small-phone.png", "small", 320, 568, 400},
    {"kit-icons.png", "icons", 390, 844, 400},
};

bool render(QQmlEngine& engine, quillo::kit::ManualAnimationClock& clock, const Shot& shot, const QDir& out) {
    QQuickWindow window;
    window.resize(shot.width, shot.height);
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/shots/Gallery.qml")));
    if (!component.isReady()) {
        std::fprintf(stderr, "quillo-kit-shots: %s\n", qPrintable(component.errorString()));
        return false;
    }
    QObject* object = component.createWithInitialProperties({{QStringLiteral("window"), QVariant::fromValue(&window)}});
    auto* root = qobject_cast<QQuickItem*>(object);
    if (!root) {
        std::fprintf(stderr, "quillo-kit-shots: %s\n", qPrintable(component.errorString()));
        return false;
    }
    root->setParentItem(window.contentItem());
    window.show();
    clock.ensureInstalled();
    QMetaObject::invokeMethod(root, "setUp", Q_ARG(QVariant, QString::fromLatin1(shot.scene)));
    clock.advanceBy(shot.afterMs);
    QCoreApplication::processEvents();
    const QImage image = window.grabWindow();
    delete object;
    const QString path = out.filePath(QString::fromLatin1(shot.file));
    if (image.isNull() || !image.save(path)) {
        std::fprintf(stderr, "quillo-kit-shots: could not write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: quillo-kit-shots DIR\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir runtime;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    QGuiApplication app(argc, argv);
    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!QDir().mkpath(out.path())) {
        std::fprintf(stderr, "quillo-kit-shots: cannot create %s\n", argv[1]);
        return 1;
    }
    quillo::kit::ManualAnimationClock clock;
    QQmlEngine engine;
    quillo::kit::addTo(engine);
    for (const Shot& shot : kShots)
        if (!render(engine, clock, shot, out)) return 1;
    return 0;
}
