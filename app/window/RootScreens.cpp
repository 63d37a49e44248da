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

int RootScreens::importHandedOverFiles(const QStringList& paths) {
    int imported = 0;
    QStringList names, refused;
    for (const QString& path : paths) {
        const QString shown = QFileInfo(path).fileName();
        Sound* sound = app_ ? app_->handleOpenURL(QFileInfo(path).absoluteFilePath().toStdString()) : nullptr;
        if (sound) {
            ++imported;
            names << QString::fromStdString(sound->name());
        } else {
            refused << shown;
        }
    }
    if (!names.isEmpty()) {
        const QString into = QString::fromStdString(localized("Imported"));
        emit message(names.size() == 1 ? QStringLiteral("\u201C%1\u201D added to %2").arg(names.first(), into)
                                       : QStringLiteral("%1 sounds added to %2").arg(names.size()).arg(into));
    }
    if (!refused.isEmpty()) {
        emit message(refused.size() == 1 ? QStringLiteral("\u201C%1\u201D is not a sound Quillo can open").arg(refused.first())
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
