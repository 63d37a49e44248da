#include "screens/lists/GlobalMenuVC.h"

#include "app/AppDelegate.h"
#include "library/text/Localized.h"
#include "library/util/Log.h"

#include <QFile>

namespace {
constexpr const char* kKinds[] = {"TrackFolder", "LoopFolder", "SoundFolder"};
constexpr const char* kTexts[] = {"Tracks", "Loops", "Sounds"};
constexpr const char* kIcons[] = {"tracksGlobal", "loopsGlobal", "soundsGlobal"};
constexpr int kRows = 3;
}  // namespace

GlobalMenuVC::GlobalMenuVC(QObject* parent) : QObject(parent) {}

QVariantList GlobalMenuVC::rows() const {
    QVariantList out;
    for (int row = 0; row < kRows; ++row) {
        out << QVariantMap{{QStringLiteral("text"), QString::fromStdString(localized(kTexts[row]))},
                           {QStringLiteral("icon"), QString::fromLatin1(kIcons[row])},
                           {QStringLiteral("available"), isAvailable(row)}};
    }
    return out;
}

QString GlobalMenuVC::kindOfRow(int row) {
    return row >= 0 && row < kRows ? QString::fromLatin1(kKinds[row]) : QString();
}

void GlobalMenuVC::setTopScreenKind(const QString& kind) {
    if (kind == topScreenKind_) return;
    topScreenKind_ = kind;
    emit selectedRowChanged();
}

int GlobalMenuVC::selectedRow() const {
    for (int row = 0; row < kRows; ++row) {
        if (topScreenKind_ == QLatin1String(kKinds[row])) return row;
    }
    return -1;
}

bool GlobalMenuVC::isAvailable(int row) const { return row >= 0 && row < kRows; }

QString GlobalMenuVC::settingsText() const { return QString::fromStdString(localized("Settings")); }

bool GlobalMenuVC::settingsAvailable() const { return QFile::exists(QString::fromLatin1(kSettingsUrl).mid(3)); }

void GlobalMenuVC::didSelectSettings() {
    if (selectedRow() < 0) return;  // already the settings (or another non-list) screen
    if (!settingsAvailable()) {
        qlog("no screen at %s yet", kSettingsUrl);
        return;
    }
    if (AppDelegate* app = AppDelegate::shared()) app->removeAllChannelsFromAC();
    emit showScreen(QString::fromLatin1(kSettingsUrl));
}

void GlobalMenuVC::didSelectRow(int row) {
    if (row == selectedRow() || !isAvailable(row)) return;
    if (AppDelegate* app = AppDelegate::shared()) app->removeAllChannelsFromAC();
    emit showList(kindOfRow(row));
}
