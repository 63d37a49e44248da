#include "app/window/RootScreens.h"

#include <QFileInfo>

#include "app/AppDelegate.h"
#include "library/model/Model.h"
#include "library/palette/Colorer.h"
#include "library/text/Localized.h"
#include "screens/kit/KitColorer.h"

RootScreens::RootScreens(AppDelegate* app, QObject* parent)
    : QObject(parent), app_(app), appearance_(customNavBarAppearance()) {}

NavBarAppearance RootScreens::customNavBarAppearance() {
    NavBarAppearance a;
    a.backgroundColor = toQColor(Colorer::barColor());
    a.titleColor = toQColor(Colorer::backgColor());
    a.largeTitleColor = a.titleColor;
    a.barTintColor = a.backgroundColor;
    a.translucent = false;
    return a;
}

void RootScreens::setSideMenuOpen(bool open) {
    if (open == sideMenuOpen_) return;
    sideMenuOpen_ = open;
    emit sideMenuOpenChanged();
}

int RootScreens::importHandedOverFiles(const QStringList& paths) { return importFiles(paths, nullptr); }

std::string RootScreens::importHandedOverFileAnswering(const QString& path) {
    std::vector<std::string> answers;
    importFiles(QStringList{path}, &answers);
    return answers.empty() ? std::string("error\tQuillo is not ready") : answers.front();
}

int RootScreens::importFiles(const QStringList& paths, std::vector<std::string>* answers) {
    int imported = 0;
    QStringList names, refused;
    QString reason;
    for (const QString& path : paths) {
        const QString shown = QFileInfo(path).fileName();
        const std::string absolute = QFileInfo(path).absoluteFilePath().toStdString();
        if (!app_) continue;
        const std::string answer = app_->importHandedOverFile(absolute);
        if (answers) answers->push_back(answer);
        if (answer.rfind("ok\t", 0) == 0) {
            ++imported;
            names << QString::fromStdString(answer.substr(3));
        } else {
            refused << shown;
            reason = QString::fromStdString(answer.substr(answer.find('\t') + 1));
        }
    }
    if (!names.isEmpty()) {
        const QString into = QString::fromStdString(localized("Imported"));
        emit message(names.size() == 1 ? QStringLiteral("\u201C%1\u201D added to %2").arg(names.first(), into)
                                       : QStringLiteral("%1 sounds added to %2").arg(names.size()).arg(into));
    }
    if (!refused.isEmpty()) {
        emit message(refused.size() == 1 ? QStringLiteral("\u201C%1\u201D was not added: %2").arg(refused.first(), reason)
                                         : QStringLiteral("%1 files are not sounds Quillo can open").arg(refused.size()));
    }
    if (imported > 0) emit soundsImported(imported);
    return imported;
}

int RootScreens::importDroppedUrls(const QList<QUrl>& urls) {
    QStringList paths;
    for (const QUrl& url : urls) {
        if (url.isLocalFile()) paths << url.toLocalFile();
    }
    return importHandedOverFiles(paths);
}
