#include "screens/lists/panels/FoldersView.h"

#include "export/Framr.h"
#include "library/CoreDater.h"
#include "library/text/Localized.h"
#include "library/text/Utly.h"

namespace {

QString folderNameOf(ManagedObject* object) {
    if (auto* f = dynamic_cast<SoundFolder*>(object)) return QString::fromStdString(f->name());
    if (auto* f = dynamic_cast<LoopFolder*>(object)) return QString::fromStdString(f->name());
    if (auto* f = dynamic_cast<TrackFolder*>(object)) return QString::fromStdString(f->name());
    return {};
}

}  // namespace

FoldersView::FoldersView(const QString& folder, const QString& type, QObject* parent)
    : QObject(parent), m_type(type), m_folder(folder) {
    for (ManagedObject* object : CoreDater::shIns().getAllItemsOfEntity(type.toStdString())) {
        const QString name = folderNameOf(object);
        if (name == m_folder) m_checked = static_cast<int>(m_folders.size());
        m_folders << name;
    }
}

QRectF FoldersView::tableFrame() const { return Framr::ffSoundFolderTable(); }
QRectF FoldersView::addButtonFrame() const { return Framr::ffSoundFolderAddButton(); }
QRectF FoldersView::nameFieldFrame() const { return Framr::ffSoundFolderNameField(); }
QRectF FoldersView::okButtonFrame() const { return Framr::ffSoundFolderOkOrCancelButton(true); }
QRectF FoldersView::cancelButtonFrame() const { return Framr::ffSoundFolderOkOrCancelButton(false); }

void FoldersView::chooseRow(int row) {
    if (m_closed || m_adding || row < 0 || row >= m_folders.size()) return;
    m_folder = m_folders.at(row);
    m_checked = row;
    emit checkedRowChanged();
    removeFoldersView();
}

void FoldersView::addPressed() {
    if (m_closed || m_adding) return;
    m_adding = true;
    emit addingChanged();
}

void FoldersView::doneAdding(const QString& text) {
    if (m_closed || !m_adding) return;
    const std::string cleaned = Utly::deleteBadCharactersFromString(text.toStdString());
    m_folder = Utly::stringContainOnlyWhitespaces(cleaned) ? defaultFolderName() : QString::fromStdString(cleaned);
    m_checked = static_cast<int>(m_folders.indexOf(m_folder));
    emit checkedRowChanged();
    removeFoldersView();
}

void FoldersView::cancelAdding() {
    if (m_closed || !m_adding) return;
    m_adding = false;
    emit addingChanged();
}

void FoldersView::touchedOutside(bool fieldEditing) {
    if (fieldEditing) return;  // the touch only ends the edit
    removeFoldersView();
}

void FoldersView::removeFoldersView() {
    if (m_closed) return;
    m_closed = true;
    emit closed(m_folder);
}

QString FoldersView::defaultFolderNameFor(const QString& type) {
    if (type == QLatin1String("SoundFolder")) return QString::fromStdString(localized("My sounds"));
    if (type == QLatin1String("LoopFolder")) return QString::fromStdString(localized("My loops"));
    return QString::fromStdString(localized("My tracks"));
}
