#include "screens/lists/panels/NameNFlderChoosrView.h"

#include "export/Framr.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"
#include "screens/lists/panels/FoldersView.h"

NameNFlderChoosrView::NameNFlderChoosrView(const QString& name, const QString& folder, const QString& folderType,
                                           QObject* parent)
    : LAAnimatedView(parent), m_name(name), m_folder(folder), m_folderType(folderType), m_hasFolder(!folder.isEmpty()) {}

NameNFlderChoosrView::~NameNFlderChoosrView() { delete m_foldersView; }

QRectF NameNFlderChoosrView::nameFrame() const { return Framr::ffNameOfSound(isForSound()); }
QRectF NameNFlderChoosrView::folderButtonFrame() const { return Framr::ffFolderName(isForSound()); }
QRectF NameNFlderChoosrView::folderIconFrame() const { return Framr::ffFolderIcon(folderButtonFrame(), isForSound()); }

void NameNFlderChoosrView::setName(const QString& name) {
    if (name == m_name) return;
    m_name = name;
    emit nameChanged();
}

void NameNFlderChoosrView::setFolderName(const QString& folder) {
    if (folder == m_folder) return;
    m_folder = folder;
    emit folderNameChanged();
}

void NameNFlderChoosrView::setTypedText(const QString& text) {
    if (text == m_typedText) return;
    m_typedText = text;
    emit typedTextChanged();
}

void NameNFlderChoosrView::finishEditing() {
    if (m_editingName) updateName(m_typedText);
}

void NameNFlderChoosrView::beginEditingName() {
    if (m_editingName) return;
    setTypedText(m_name);
    m_editingName = true;
    emit editingNameChanged();
}

void NameNFlderChoosrView::updateName(const QString& text) {
    setName(cleanedName(text, m_folderType));
    if (m_editingName) {
        m_editingName = false;
        emit editingNameChanged();
    }
}

void NameNFlderChoosrView::openFoldersView() {
    if (!m_hasFolder || m_foldersView) return;
    m_foldersView = new FoldersView(m_folder, m_folderType, this);
    connect(m_foldersView, &FoldersView::closed, this, &NameNFlderChoosrView::foldersViewClosed);
    emit foldersViewChanged();
}

void NameNFlderChoosrView::foldersViewClosed(const QString& chosen) {
    setFolderName(chosen);
    FoldersView* chooser = m_foldersView;
    m_foldersView = nullptr;
    emit foldersViewChanged();
    if (chooser) chooser->deleteLater();
}

QString NameNFlderChoosrView::defaultNameFor(const QString& folderType) {
    if (folderType == QLatin1String("SoundFolder")) return QString::fromStdString(localized("Sound"));
    if (folderType == QLatin1String("LoopFolder")) return QString::fromStdString(localized("Loop"));
    return QString::fromStdString(localized("Track"));
}

QString NameNFlderChoosrView::cleanedName(const QString& text, const QString& folderType) {
    const std::string cleaned = Utly::deleteBadCharactersFromString(text.toStdString());
    if (Utly::stringContainOnlyWhitespaces(cleaned)) return defaultNameFor(folderType);
    return QString::fromStdString(cleaned);
}
