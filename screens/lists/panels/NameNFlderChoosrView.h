#pragma once
// The name-and-folder panel: a name field and, when the item lives in a
// folder, a button showing the folder's name that opens the folder chooser.
// The sound editor's panel and the rename panel of the lists build on it.
// The panel decides what a typed name becomes; its QML view only draws.
#include <QPointer>
#include <QRectF>
#include <QString>

#include "screens/kit/LAAnimatedView.h"

#include "screens/lists/panels/FoldersView.h"

class NameNFlderChoosrView : public LAAnimatedView {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name NOTIFY nameChanged)
    Q_PROPERTY(QString folderName READ folderName NOTIFY folderNameChanged)
    Q_PROPERTY(QString folderType READ folderType CONSTANT)
    Q_PROPERTY(bool isForSound READ isForSound CONSTANT)
    Q_PROPERTY(bool hasFolder READ hasFolder CONSTANT)
    // While the name is edited every other element shrinks away.
    Q_PROPERTY(bool editingName READ editingName NOTIFY editingNameChanged)
    // What the field holds while it is being edited, so that Done can take it.
    Q_PROPERTY(QString typedText READ typedText WRITE setTypedText NOTIFY typedTextChanged)
    // The open folder chooser, or null.
    Q_PROPERTY(FoldersView* foldersView READ foldersView NOTIFY foldersViewChanged)
    // Frames on screen, re-read when the window's layout changes.
    Q_PROPERTY(QRectF nameFrame READ nameFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF folderButtonFrame READ folderButtonFrame NOTIFY layoutChanged)
    Q_PROPERTY(QRectF folderIconFrame READ folderIconFrame NOTIFY layoutChanged)

public:
    // folder: the item's folder name, or empty for a panel without folder choice.
    // folderType: "SoundFolder", "LoopFolder" or "TrackFolder".
    NameNFlderChoosrView(const QString& name, const QString& folder, const QString& folderType,
                         QObject* parent = nullptr);
    ~NameNFlderChoosrView() override;

    QString name() const { return m_name; }
    QString folderName() const { return m_folder; }
    QString folderType() const { return m_folderType; }
    bool isForSound() const { return m_folderType == QLatin1String("SoundFolder"); }
    bool hasFolder() const { return m_hasFolder; }
    bool editingName() const { return m_editingName; }
    QString typedText() const { return m_typedText; }
    void setTypedText(const QString& text);
    FoldersView* foldersView() const { return m_foldersView; }
    QRectF nameFrame() const;
    QRectF folderButtonFrame() const;
    QRectF folderIconFrame() const;

    // The owner sets a name it made itself (say, a unique one after saving).
    void setName(const QString& name);
    void setFolderName(const QString& folder);

    // The field took focus: everything else shrinks away.
    Q_INVOKABLE void beginEditingName();
    // Return or a touch outside: the text, cleaned of characters not allowed
    // in names, becomes the name; a blank one the kind's default name.
    Q_INVOKABLE void updateName(const QString& text);
    // The folder button: opens the chooser over the whole screen.
    Q_INVOKABLE void openFoldersView();
    // Ends an edit in progress with what was typed (before Done or closing).
    Q_INVOKABLE void finishEditing();
    // Tell the panel that the window was re-laid out.
    Q_INVOKABLE void relayout() { emit layoutChanged(); }

    // "Sound", "Loop" or "Track" (localised) for a folder type.
    static QString defaultNameFor(const QString& folderType);
    // What a typed name becomes.
    static QString cleanedName(const QString& text, const QString& folderType);

signals:
    void nameChanged();
    void folderNameChanged();
    void editingNameChanged();
    void typedTextChanged();
    void foldersViewChanged();
    void layoutChanged();

private:
    void foldersViewClosed(const QString& chosen);

    QString m_name;
    QString m_folder;
    QString m_folderType;
    bool m_hasFolder;
    bool m_editingName = false;
    QString m_typedText;
    QPointer<FoldersView> m_foldersView;
};
