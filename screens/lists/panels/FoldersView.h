#pragma once
// The folder chooser: every folder of one kind with the current one checked,
// and an add button that swaps the table for a field naming a new folder.
// Choosing or naming a folder closes the chooser with that name; the folder
// itself is made by the store when the item is saved into it.
#include <QObject>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class FoldersView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("opened by a name-and-folder panel")
    Q_PROPERTY(QStringList folders READ folders CONSTANT)
    Q_PROPERTY(int checkedRow READ checkedRow NOTIFY checkedRowChanged)
    Q_PROPERTY(QString folder READ folder NOTIFY checkedRowChanged)
    // The table has shrunk away and the new-folder field shows.
    Q_PROPERTY(bool adding READ adding NOTIFY addingChanged)
    Q_PROPERTY(QString defaultFolderName READ defaultFolderName CONSTANT)
    Q_PROPERTY(QRectF tableFrame READ tableFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF addButtonFrame READ addButtonFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF nameFieldFrame READ nameFieldFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF okButtonFrame READ okButtonFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF cancelButtonFrame READ cancelButtonFrame NOTIFY layoutChanged)

public:
    // Reads the folders of the type ("SoundFolder", "LoopFolder", "TrackFolder") from the store.
    FoldersView(const QString& folder, const QString& type, QObject* parent = nullptr);

    QStringList folders() const { return m_folders; }
    int checkedRow() const { return m_checked; }
    QString folder() const { return m_folder; }
    bool adding() const { return m_adding; }
    QString defaultFolderName() const { return defaultFolderNameFor(m_type); }
    QRectF tableFrame() const;
    QRectF addButtonFrame() const;
    QRectF nameFieldFrame() const;
    QRectF okButtonFrame() const;
    QRectF cancelButtonFrame() const;

    // A row: its folder is chosen, checked, and the chooser closes.
    Q_INVOKABLE void chooseRow(int row);
    Q_INVOKABLE void addPressed();
    // Done on the new-folder field.
    Q_INVOKABLE void doneAdding(const QString& text);
    // Cancel brings the table back.
    Q_INVOKABLE void cancelAdding();
    // A touch outside the field: closes unless the field is being edited.
    Q_INVOKABLE void touchedOutside(bool fieldEditing);
    Q_INVOKABLE void relayout() { emit layoutChanged(); }

    // "My sounds", "My loops" or "My tracks" (localised).
    static QString defaultFolderNameFor(const QString& type);

signals:
    void checkedRowChanged();
    void addingChanged();
    void layoutChanged();
    // The chooser is done; the panel shows `folder` and grows back.
    void closed(const QString& folder);

private:
    void removeFoldersView();

    QString m_type;
    QString m_folder;
    QStringList m_folders;
    int m_checked = -1;
    bool m_adding = false;
    bool m_closed = false;
};
