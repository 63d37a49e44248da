// Renders the export screen and the settings screen in their main states to
// PNG files, offscreen, on a library of its own (built-in content) with the
// silent null audio device:
//   quillo-export-shots DIR LIBRARY
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>
#include <cstdio>
#include <functional>

#include "app/AppDelegate.h"
#include "engine/MainThread.h"
#include "export/ExportVC.h"
#include "library/CoreDater.h"
#include "library/model/Model.h"
#include "screens/kit/KitSetup.h"

Q_IMPORT_QML_PLUGIN(Quillo_ExportPlugin)
// The filmed loop grid is the loop editor's loop view; that module needs the lists'.
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)

namespace {

void wait(int ms) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

bool waitFor(const std::function<bool()>& done, int ms) {
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

struct Shot {
    QString file, source;
    QVariantMap properties;
    std::function<void(QQuickItem* root)> act;  // drives the screen into its state
};

bool render(QQmlEngine& engine, const Shot& shot, const QDir& out) {
    QQuickWindow window;
    window.resize(390, 844);
    window.setColor(Qt::white);
    QQmlComponent component(&engine, QUrl(shot.source));
    QObject* object = component.createWithInitialProperties(shot.properties);
    auto* root = qobject_cast<QQuickItem*>(object);
    if (!root) {
        std::fprintf(stderr, "quillo-export-shots: %s\n", qPrintable(component.errorString()));
        return false;
    }
    root->setParentItem(window.contentItem());
    root->setSize(QSizeF(390, 844));
    window.show();
    wait(450);  // the screen has grown
    if (shot.act) shot.act(root);
    const QImage image = window.grabWindow();
    if (auto* vc = root->property("controller").value<ExportVC*>()) vc->cancelPressed();
    delete object;
    const QString path = out.filePath(shot.file);
    if (image.isNull() || !image.save(path)) {
        std::fprintf(stderr, "quillo-export-shots: could not write %s\n", qPrintable(path));
        return false;
    }
    std::printf("%s\n", qPrintable(path));
    return true;
}

ExportVC* controllerOf(QQuickItem* root) { return root->property("controller").value<ExportVC*>(); }

template <class T>
std::string firstNameOf(const char* entity, const std::function<bool(T*)>& wanted = {}) {
    for (ManagedObject* o : CoreDater::shIns().getAllItemsOfEntity(entity)) {
        auto* item = static_cast<T*>(o);
        if (!wanted || wanted(item)) return item->name();
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: quillo-export-shots DIR LIBRARY\n");
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir runtime;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    QGuiApplication application(argc, argv);
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(out.path());

    RunLoopMainThread mainThread;
    QTimer drain;
    QObject::connect(&drain, &QTimer::timeout, [&mainThread] { mainThread.runPending(); });
    drain.start(5);
    AppDelegateOptions options;
    options.libraryFolder = argv[2];
    options.settingsFile = QDir(QString::fromLocal8Bit(argv[2])).filePath("shots-settings.ini").toStdString();
    options.driver = AudioDriverKind::Null;
    options.mainThread = &mainThread;
    AppDelegate app(options);
    if (!app.didFinishLaunching()) {
        std::fprintf(stderr, "quillo-export-shots: %s\n", app.libraryError().message.c_str());
        return 1;
    }
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&app] { app.audioController()->pollForMessageResponses(); });
    poll.start(10);

    QQmlEngine engine;
    quillo::kit::addTo(engine);
    const QString exportView = QStringLiteral("qrc:/qt/qml/Quillo/Export/ExportView.qml");
    const QString sound = QString::fromStdString(firstNameOf<Sound>("Sound"));
    const QString folder = QString::fromStdString(
        firstNameOf<SoundFolder>("SoundFolder", [](SoundFolder* f) { return f->items().size() > 1; }));
    const QString loop = QStringLiteral("Easy beat 95");
    const QString track = QString::fromStdString(firstNameOf<Track>("Track"));
    auto props = [](const QString& kind, const QString& name) { return QVariantMap{{"kind", kind}, {"name", name}}; };

    const std::vector<Shot> shots = {
        {"export-sound.png", exportView, props("sound", sound), {}},
        {"export-sound-folder.png", exportView, props("soundFolder", folder), {}},
        {"export-loop.png", exportView, props("loop", loop), {}},
        {"export-loop-settings.png", exportView, props("loop", loop),
         [](QQuickItem* r) {
             controllerOf(r)->settingsPressed();
             wait(450);
         }},
        {"export-loop-video-settings.png", exportView, props("loop", loop),
         [](QQuickItem* r) {
             controllerOf(r)->audioVideoChanged(1);
             controllerOf(r)->formatChanged(1);
             controllerOf(r)->settingsPressed();
             wait(450);
         }},
        {"export-loop-square.png", exportView, props("loop", loop),
         [](QQuickItem* r) {
             controllerOf(r)->formatChanged(1);
             wait(400);
         }},
        {"export-track.png", exportView, props("track", track), {}},
        {"export-progress.png", exportView, props("loop", loop),
         [](QQuickItem* r) {
             controllerOf(r)->sendPressed();
             wait(1500);
         }},
        {"export-result.png", exportView, props("loop", loop),
         [](QQuickItem* r) {
             ExportVC* vc = controllerOf(r);
             vc->saveOrSendChanged(0);
             bool shown = false;
             QObject::connect(vc, &ExportVC::resultShown, [&shown] { shown = true; });
             vc->sendPressed();
             waitFor([&shown] { return shown; }, 20000);
             wait(350);
         }},
        {"export-mail-composer.png", exportView, props("sound", sound),
         [](QQuickItem* r) {
             MailAccount account;
             account.server = "smtp.example.org";
             account.fromAddress = "me@example.org";
             controllerOf(r)->setMailAccount(account);
             controllerOf(r)->sendPressed();
             wait(300);
         }},
        {"settings.png", QStringLiteral("qrc:/qt/qml/Quillo/Export/SettingsView.qml"), {}, {}},
    };
    bool ok = true;
    for (const Shot& s : shots) ok = render(engine, s, out) && ok;
    app.removeAllChannelsFromAC();
    return ok ? 0 : 1;
}
