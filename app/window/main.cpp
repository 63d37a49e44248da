// quillo: the Quillo window.
#include <QGuiApplication>
#include <QIcon>
#include <QtQml/qqmlextensionplugin.h>
#include <cstdio>

#include "app/window/LogRoute.h"
#include "app/window/QuilloWindow.h"
#include "app/window/ScreenshotRunner.h"
#include "app/window/WindowScreenshots.h"

Q_IMPORT_QML_PLUGIN(Quillo_AppPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_KitPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ExportPlugin)

int main(int argc, char** argv) {
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QGuiApplication application(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Quillo"));
    QGuiApplication::setApplicationName(QStringLiteral("Quillo"));
    QGuiApplication::setDesktopFileName(QStringLiteral("app.quillo.Quillo"));
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("app.quillo.Quillo")));

    WindowOptions options;
    QString message;
    switch (parseWindowArguments(QGuiApplication::arguments().mid(1), &options, &message)) {
        case WindowArguments::Help:
            std::printf("%s", qPrintable(windowUsage()));
            return 0;
        case WindowArguments::Error:
            std::fprintf(stderr, "%s\n\n%s", qPrintable(message), qPrintable(windowUsage()));
            return 2;
        case WindowArguments::Run:
            break;
    }
    routeLogToFile(options.verbose);

    QuilloWindow window(options);
    if (!window.launch()) return 1;

    if (!options.screenshotDir.isEmpty()) {
        ScreenshotRunner runner;
        addWindowScreenshots(runner, window);
        return runner.run(options.screenshotDir) ? 0 : 1;
    }
    return QGuiApplication::exec();
}
