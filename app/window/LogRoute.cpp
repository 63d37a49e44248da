#include "app/window/LogRoute.h"

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <cstdio>
#include <memory>

#include "library/util/Log.h"

std::string logFilePath() {
    QString state = QString::fromLocal8Bit(qgetenv("XDG_STATE_HOME"));
    if (state.isEmpty()) state = QDir::home().filePath(QStringLiteral(".local/state"));
    return QDir(state).filePath(QStringLiteral("Quillo/quillo.log")).toStdString();
}

void routeLogToFile(bool alsoToStandardError) {
    const std::string path = logFilePath();
    QDir().mkpath(QFileInfo(QString::fromStdString(path)).absolutePath());
    std::shared_ptr<FILE> file(std::fopen(path.c_str(), "a"), [](FILE* f) {
        if (f) std::fclose(f);
    });
    if (!file && !alsoToStandardError) return;  // no log file: keep the standard error
    quillo_log::setSink([file, alsoToStandardError](const std::string& line) {
        std::string out = line;
        if (out.empty() || out.back() != '\n') out.push_back('\n');
        if (file) {
            std::fwrite(out.data(), 1, out.size(), file.get());
            std::fflush(file.get());
        }
        if (alsoToStandardError) std::fwrite(out.data(), 1, out.size(), stderr);
    });
}
