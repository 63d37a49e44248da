#include "app/window/WindowOptions.h"

#include <QDir>
#include <QFileInfo>

WindowArguments parseWindowArguments(const QStringList& arguments, WindowOptions* options, QString* message) {
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& a = arguments[i];
        auto needsValue = [&](const char* what) {
            if (i + 1 < arguments.size()) return true;
            *message = QStringLiteral("quillo: %1 needs %2").arg(a, QLatin1String(what));
            return false;
        };
        if (a == QLatin1String("--library")) {
            if (!needsValue("a folder")) return WindowArguments::Error;
            options->libraryFolder = arguments[++i];
        } else if (a == QLatin1String("--screenshot")) {
            if (!needsValue("a folder")) return WindowArguments::Error;
            options->screenshotDir = arguments[++i];
        } else if (a == QLatin1String("--verbose")) {
            options->verbose = true;
        } else if (a == QLatin1String("-h") || a == QLatin1String("--help")) {
            return WindowArguments::Help;
        } else if (a == QLatin1String("--")) {
            for (++i; i < arguments.size(); ++i) options->files << QFileInfo(arguments[i]).absoluteFilePath();
        } else if (a.startsWith(QLatin1Char('-')) && a.size() > 1) {
            *message = QStringLiteral("quillo: unknown option \"%1\"").arg(a);
            return WindowArguments::Error;
        } else {
            options->files << QFileInfo(a).absoluteFilePath();
        }
    }
    return WindowArguments::Run;
}

QString windowUsage() {
    return QStringLiteral(
        "usage: quillo [--library DIR] [--verbose] [FILE...]\n"
        "\n"
        "  FILE...            sound files to add to the folder \"Imported\" (each file is moved in)\n"
        "  --library DIR      the library folder (default: $QUILLO_LIBRARY or ~/.local/share/Quillo)\n"
        "  --verbose          log to standard error as well as to the log file\n"
        "  --screenshot DIR   save pictures of the main screens as PNG files in DIR, then quit\n");
}
