// quillo-cli export sound|folder|loop|track NAME [--video] [--format 9:16|1:1|16:9]
//     [--repeats 1|2|4|8] [--no-photos] (-o FILE | --save | --mail ADDRESS)
// The export screen's own controller, run without a window: a loop or track
// plays in real time on the silent null device while its output is recorded,
// trimmed and then written to FILE, saved (a loop's sound into "Rendered
// loops", a movie into the Videos folder) or mailed through the account set
// up in the settings. Prints progress on a terminal and the result at the end.
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QSettings>
#include <QtQml/qqmlextensionplugin.h>
#include <cstdio>
#include <iostream>

#include "app/cli/CliSession.h"
#include "app/cli/Commands.h"
#include "export/ExportVC.h"
#include "export/Framr.h"
#include "export/mail/Keyring.h"
#include "library/media/Filer.h"
#include "library/model/Model.h"
#include "screens/kit/KitSetup.h"

Q_IMPORT_QML_PLUGIN(Quillo_ExportPlugin)
// The filmed loop grid is the loop editor's loop view; that module needs the lists'.
Q_IMPORT_QML_PLUGIN(Quillo_LoopEditorPlugin)
Q_IMPORT_QML_PLUGIN(Quillo_ListsPlugin)

namespace {

const char* kUsage =
    "usage: quillo-cli export sound|folder|loop|track NAME [--video] [--format 9:16|1:1|16:9]\n"
    "       [--repeats 1|2|4|8] [--no-photos] (-o FILE | --save | --mail ADDRESS)\n";

int usage(const char* problem = nullptr) {
    if (problem) std::fprintf(stderr, "quillo-cli export: %s\n", problem);
    std::fputs(kUsage, stderr);
    return 2;
}

// The results that mean it went wrong.
bool isFailure(const QString& text) {
    return text == "Sound's not saved" || text == "Video's not saved" || text == "Mail failed" ||
           text == "Mail's not sent" || text == "Mail cancelled" || text == "File's not saved";
}

// The keyring's password, or one typed on the terminal without echo.
bool passwordFor(MailAccount& account) {
    if (account.userName.isEmpty()) return true;
    if (keyring::readPasswordNow(keyring::passwordKey(account.userName, account.server), &account.password))
        return true;
    if (!isatty(STDIN_FILENO)) return false;
    std::fprintf(stderr, "Password for %s at %s: ", account.userName.toUtf8().constData(),
                 account.server.toUtf8().constData());
    termios old{};
    tcgetattr(STDIN_FILENO, &old);
    termios quiet = old;
    quiet.c_lflag &= ~tcflag_t(ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    std::string line;
    std::getline(std::cin, line);
    tcsetattr(STDIN_FILENO, TCSANOW, &old);
    std::fprintf(stderr, "\n");
    account.password = QString::fromStdString(line);
    return !line.empty();
}

}  // namespace

int runExport(CliContext& context) {
    CliArgs args(context.args);
    const bool video = args.takeFlag("--video");
    const bool noPhotos = args.takeFlag("--no-photos");
    const bool save = args.takeFlag("--save");
    const auto formatText = args.take("--format");
    const auto repeatsText = args.take("--repeats");
    const auto output = args.take("-o");
    const auto mailTo = args.take("--mail");
    const auto& rest = args.rest();
    if (!args.error().empty()) return usage(args.error().c_str());
    if (rest.size() != 2) return usage();
    const std::string& kind = rest[0];
    if (kind != "sound" && kind != "folder" && kind != "loop" && kind != "track") return usage("unknown kind");
    if (int(save) + int(output.has_value()) + int(mailTo.has_value()) != 1)
        return usage("choose one of -o FILE, --save and --mail ADDRESS");
    const bool rendered = kind == "loop" || kind == "track";
    if (!rendered && (video || save)) return usage("a sound or a folder can only be mailed or written with -o");
    if (kind == "folder" && output) return usage("a folder can only be mailed");
    if (kind == "track" && !video && save) return usage("a track's sound can only be mailed or written with -o");
    int format = 0;
    if (formatText) {
        format = *formatText == "9:16" ? 0 : *formatText == "1:1" ? 1 : *formatText == "16:9" ? 2 : -1;
        if (format < 0) return usage("--format is 9:16, 1:1 or 16:9");
    }
    int repeatsIndex = 0;
    if (repeatsText) {
        repeatsIndex = *repeatsText == "1" ? 0 : *repeatsText == "2" ? 1 : *repeatsText == "4" ? 2 : *repeatsText == "8" ? 3 : -1;
        if (repeatsIndex < 0) return usage("--repeats is 1, 2, 4 or 8");
    }
    if (mailTo && !looksLikeAddress(QString::fromStdString(*mailTo))) return usage("--mail needs a mail address");

    // Saving and mailing a loop's sound write into the library; -o only reads it.
    CliSession session(context, AudioDriverKind::Null, output ? LibraryAccess::Read : LibraryAccess::Write);
    const QString kindName = kind == "folder" ? "soundFolder" : QString::fromStdString(kind);
    const ExportContent content = ExportContent::find(kindName, QString::fromStdString(rest[1]));
    if (content.kind == ExportKind::None) {
        if (kind == "loop") session.loopNamed(rest[1]);
        else if (kind == "track") session.trackNamed(rest[1]);
        else if (kind == "sound") session.soundNamed(rest[1]);
        else std::fprintf(stderr, "quillo-cli: no sound folder named \"%s\"\n", rest[1].c_str());
        return 1;
    }
    if (kind == "sound" && output) {  // nothing to render: the sound's own WAV
        QFile::remove(QString::fromStdString(*output));
        if (!QFile::copy(QString::fromStdString(Filer::pathForSound(content.sound)), QString::fromStdString(*output))) {
            std::fprintf(stderr, "quillo-cli: cannot write %s\n", output->c_str());
            return 1;
        }
        std::printf("File's saved\n");
        return 0;
    }

    ExportVC vc;
    vc.initWithContnt(content);
    if (rendered) {
        vc.audioVideoChanged(video ? 1 : 0);
        vc.repeatsChanged(repeatsIndex);
        vc.formatChanged(format);
        vc.saveOrSendChanged(mailTo ? 1 : 0);
    }
    vc.attachPhotosChanged(noPhotos ? 1 : 0);
    if (output) vc.setOutputFile(QString::fromStdString(*output));
    if (mailTo) {
        MailAccount account = session.app->settings() ? MailAccount::load(*session.app->settings()) : MailAccount();
        if (!account.isSetUp()) {
            std::fprintf(stderr, "quillo-cli: no mail account: set one up in Quillo's settings\n");
            return 1;
        }
        if (!passwordFor(account)) {
            std::fprintf(stderr, "quillo-cli: no password for %s (no keyring entry, and no terminal to ask on)\n",
                         account.userName.toUtf8().constData());
            return 1;
        }
        vc.setMailAccount(account);
        vc.setMailTo(QString::fromStdString(*mailTo));
    }

    // A video films the loop's grid (or the track's picture) in a window nobody sees.
    std::unique_ptr<QQuickView> view;
    if (rendered && video) {
        view = std::make_unique<QQuickView>();
        quillo::kit::addTo(*view->engine());
        view->setInitialProperties({{"controller", QVariant::fromValue(&vc)}});
        view->setResizeMode(QQuickView::SizeRootObjectToView);
        const QSize size = Framr::ffExportLoopAllInstrV(format).size().toSize();
        view->resize(size);
        view->setSource(QUrl(QStringLiteral("qrc:/qt/qml/Quillo/Export/FilmedPicture.qml")));
        if (!view->rootObject()) {
            for (const QQmlError& e : view->errors()) std::fprintf(stderr, "%s\n", e.toString().toUtf8().constData());
            return 1;
        }
        view->show();
        vc.setFilmedItem(view->rootObject());
    }

    ProgressLine progress;
    QString result;
    bool closed = false;
    QObject::connect(&vc, &ExportVC::progressChanged, [&] { progress.update(vc.progress()); });
    QObject::connect(&vc, &ExportVC::resultShown, [&](const QString& text) { result = text; });
    QObject::connect(&vc, &ExportVC::removeExportVC, [&] { closed = true; });
    vc.sendPressed();
    while (!closed && result.isEmpty()) {
        session.mainThread.runUntil([&] { return closed || !result.isEmpty(); }, std::chrono::milliseconds(10));
        session.app->audioController()->pollForMessageResponses();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (vc.phase() == ExportVC::Composing && !vc.composer() && result.isEmpty()) {
            result = "Mail's not sent";
            break;
        }
    }
    progress.finish();
    vc.cancelPressed();  // stops what still plays and removes the scratch files
    if (view) {
        // The scene graph keeps one texture per decoded photo, and frees it
        // only in a frame rendered after the photo itself is gone. So, in this
        // order: delete the picture; drop the photos the image cache keeps
        // for reuse (releaseResources); render one last frame; then close.
        // Hiding the window first, or closing it at once, left every photo's
        // texture and pixels (650 KB for a loop of six) alive until exit.
        vc.setFilmedItem(nullptr);
        view->setSource(QUrl());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        view->releaseResources();
        view->grabWindow();
        view.reset();
    }
    std::printf("%s\n", result.toUtf8().constData());
    return isFailure(result) ? 1 : 0;
}
