// quillo: the Quillo window.
#include <QGuiApplication>
#include <QIcon>
#include <QtQml/qqmlextensionplugin.h>
#include <cstdio>

#include <QFileInfo>

#include "app/LibraryLocation.h"
#include "app/handoff/HandoffChannel.h"
#include "library/util/Log.h"
#include "app/window/QuilloWindow.h"
#include "app/window/ScreenshotRunner.h"
#include "app/window/TrackEditorScreenshots.h"
#include "app/window/WindowScreenshots.h"
#include "app/window/ListScreenshots.h"
#include "screens/soundeditor/shots/SoundEditorScreenshots.h"

Q_IMPORT_QML_PLUGIN(Quillo_AppPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_KitPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_SoundEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_TrackEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ExportPlugin)

namespace {

// Hands every file to the window that holds the library. Returns -1 when no
// window serves it (this program then opens the library itself), else the
// exit status: 0 when every file was imported.
int handFilesToRunningWindow(const std::string& folder, const QStringList& files) {
    int status = -1;
    for (const QString& file : files) {
        const std::string path = QFileInfo(file).absoluteFilePath().toStdString();
        const HandoffReply reply = HandoffChannel::sendFileToLibraryHolder(folder, path);
        if (!reply.delivered) {
            if (status < 0) return -1;
            std::fprintf(stderr, "quillo: %s: the Quillo window did not answer\n", qPrintable(file));
            status = 1;
            continue;
        }
        if (status < 0) status = 0;
        if (reply.imported) {
            std::printf("%s\n", reply.text.c_str());
        } else {
            std::fprintf(stderr, "quillo: %s: %s\n", qPrintable(file), reply.text.c_str());
            status = 1;
        }
    }
    return status;
}

}  // namespace

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
    quillo_log::setVerbose(options.verbose);

    // A window already open on this library takes the files itself.
    if (!options.files.isEmpty()) {
        const std::string folder =
            options.libraryFolder.isEmpty() ? defaultLibraryFolder() : options.libraryFolder.toStdString();
        if (int status = handFilesToRunningWindow(folder, options.files); status >= 0) return status;
    }

    QuilloWindow window(options);
    if (!window.launch()) {
        const LibraryOpenError& error = window.launchError();
        if (!error.message.empty()) std::fprintf(stderr, "quillo: %s\n", error.message.c_str());
        return error.exitCode != 0 ? error.exitCode : 1;
    }

    if (!options.screenshotDir.isEmpty()) {
        ScreenshotRunner runner;
        addSoundEditorScreenshots(runner, window);
        addWindowScreenshots(runner, window);
        addTrackEditorScreenshots(runner, window);
        addListScreenshots(runner, window);  // last: its rename panel stays over the window
        return runner.run(options.screenshotDir) ? 0 : 1;
    }
    return QGuiApplication::exec();
}
