#include "app/window/QuilloWindow.h"

#include <QQuickWindow>
#include <QUrl>

#include "library/util/Log.h"

QuilloWindow::QuilloWindow(WindowOptions options, AudioDriverKind driver) : options_(std::move(options)) {
    AppDelegateOptions o;
    o.libraryFolder = options_.libraryFolder.toStdString();
    o.settingsFile = options_.settingsFile.toStdString();
    o.driver = driver;
    o.mainThread = &mainThread_;
    app_ = std::make_unique<AppDelegate>(o);
    shell_ = std::make_unique<RootScreens>(app_.get());
}

QuilloWindow::~QuilloWindow() {
    handoff_.reset();
    engine_.reset();
    shell_.reset();
    app_.reset();
}

bool QuilloWindow::launch() {
    // Settings, engine, built-in content, player lists; the library's writer
    // lock is taken here and held for the window's life.
    if (!app_->didFinishLaunching()) {
        launchError_ = app_->libraryError();
        if (launchError_.exitCode == 0) launchError_.exitCode = 1;
        return false;
    }

    engine_ = std::make_unique<QQmlApplicationEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine_->setInitialProperties({{QStringLiteral("shell"), QVariant::fromValue(shell_.get())}});
    engine_->load(QUrl(QStringLiteral("qrc:/qt/qml/Quillo/App/Main.qml")));
    const auto roots = engine_->rootObjects();
    window_ = roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
    if (!window_) {
        qlog("The window could not be built");
        return false;
    }

    if (!options_.files.isEmpty()) shell_->importHandedOverFiles(options_.files);

    handoff_ = std::make_unique<HandoffChannel>(app_->applicationDocumentsDirectory(), [this](const std::string& path) {
        return shell_->importHandedOverFileAnswering(QString::fromStdString(path));
    });
    std::string why;
    if (!handoff_->listen(&why)) qlog("Files handed over by another quillo cannot reach this window: %s", why.c_str());
    return true;
}
