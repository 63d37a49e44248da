#pragma once
// The side menu under the left edge: one row per library list (tracks, loops,
// sounds). The selected row is the list on top of the screen stack; choosing
// another row silences everything and asks the window to make that list the
// only screen.
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

class GlobalMenuVC : public QObject {
    Q_OBJECT
    QML_ELEMENT
    // One entry per row: "text", "icon" (the image's name), "available".
    Q_PROPERTY(QVariantList rows READ rows CONSTANT)
    // The list kind on top ("TrackFolder", "LoopFolder", "SoundFolder"), or anything else.
    Q_PROPERTY(QString topScreenKind READ topScreenKind WRITE setTopScreenKind NOTIFY selectedRowChanged)
    // 0 tracks, 1 loops, 2 sounds; -1 when another screen is on top.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)
    // The second section's one row, the settings screen, shown once it is
    // part of the program; marked whenever no list is on top.
    Q_PROPERTY(QString settingsText READ settingsText CONSTANT)
    Q_PROPERTY(QString settingsIcon READ settingsIcon CONSTANT)
    Q_PROPERTY(bool settingsAvailable READ settingsAvailable CONSTANT)

public:
    // The settings screen lives with the export screen; the menu shows its row once it is linked.
    static constexpr const char* kSettingsUrl = "qrc:/qt/qml/Quillo/Export/SettingsView.qml";

    explicit GlobalMenuVC(QObject* parent = nullptr);

    QVariantList rows() const;
    QString topScreenKind() const { return topScreenKind_; }
    void setTopScreenKind(const QString& kind);
    int selectedRow() const;

    // Whether the row's list can be shown in this version of the window.
    Q_INVOKABLE bool isAvailable(int row) const;
    // A tap on a row: nothing for the current list (or a list not there yet);
    // otherwise stops all playing audio and emits showList with the list's kind.
    Q_INVOKABLE void didSelectRow(int row);

    QString settingsText() const;
    QString settingsIcon() const { return QStringLiteral("settingsGlobal"); }
    bool settingsAvailable() const;
    // The settings row: silences everything and asks the window to show the settings screen.
    Q_INVOKABLE void didSelectSettings();

    static QString kindOfRow(int row);

signals:
    void selectedRowChanged();
    void showList(const QString& typeOfItems);
    void showScreen(const QString& url);

private:
    QString topScreenKind_;
};
