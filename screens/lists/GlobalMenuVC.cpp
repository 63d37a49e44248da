#include "screens/lists/GlobalMenuVC.h"

#include "app/AppDelegate.h"
#include "library/text/Localized.h"

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

// Only the loops list exists so far; the tracks and sounds lists come with their screens.
bool GlobalMenuVC::isAvailable(int row) const { return row == 1; }

void GlobalMenuVC::didSelectRow(int row) {
    if (row == selectedRow() || !isAvailable(row)) return;
    if (AppDelegate* app = AppDelegate::shared()) app->removeAllChannelsFromAC();
    emit showList(kindOfRow(row));
}
