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
    engine_.reset();
    shell_.reset();
    app_.reset();
}

bool QuilloWindow::launch() {
    app_->didFinishLaunching();  // settings, engine, built-in content, player lists

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
    return true;
}
