#include "screens/loopeditor/WithPickerView.h"

#include "library/CoreDater.h"
#include "library/model/Model.h"

namespace {

// The name of any named library object; empty when it has none.
std::string nameOf(const ManagedObject* o) {
    if (!o) return {};
    switch (o->entity()) {
    case Entity::Sound: return static_cast<const Sound*>(o)->name();
    case Entity::Loop: return static_cast<const Loop*>(o)->name();
    case Entity::Track: return static_cast<const Track*>(o)->name();
    case Entity::SoundFolder: return static_cast<const SoundFolder*>(o)->name();
    case Entity::LoopFolder: return static_cast<const LoopFolder*>(o)->name();
    case Entity::TrackFolder: return static_cast<const TrackFolder*>(o)->name();
    default: return {};
    }
}

template <class F>
std::vector<ManagedObject*> itemsOf(const ManagedObject* folder) {
    const auto& items = static_cast<const F*>(folder)->items();
    return {items.begin(), items.end()};
}

QString titleOf(const ManagedObject* o) {
    const std::string name = nameOf(o);
    return name.empty() ? QStringLiteral("???") : QString::fromStdString(name);
}

}  // namespace

WithPickerView::WithPickerView(std::string folderEntity, std::string itemEntity, bool fullscr, QObject* parent)
    : QObject(parent), m_folderEntity(std::move(folderEntity)), m_itemEntity(std::move(itemEntity)), m_fullscr(fullscr) {}

void WithPickerView::addPickerWithUpdatedItems() {
    CoreDater& dater = CoreDater::shIns();
    _folders = dater.getAllItemsOfEntity(m_folderEntity);
    _allItems = dater.getAllItemsOfEntity(m_itemEntity);
    m_leftRow = 0;
    m_rightRow = 0;
    const ManagedObject* current = currentItem();
    for (size_t i = 0; i < _allItems.size(); ++i)
        if (_allItems[i] == current) m_rightRow = static_cast<int>(i);
    reloadTitles();
}

std::vector<ManagedObject*> WithPickerView::itemsOfLeftRow(int leftRow) const {
    if (leftRow == 0) return _allItems;
    if (leftRow < 0 || leftRow > static_cast<int>(_folders.size())) return {};
    const ManagedObject* folder = _folders[static_cast<size_t>(leftRow - 1)];
    switch (folder->entity()) {
    case Entity::SoundFolder: return itemsOf<SoundFolder>(folder);
    case Entity::LoopFolder: return itemsOf<LoopFolder>(folder);
    case Entity::TrackFolder: return itemsOf<TrackFolder>(folder);
    default: return {};
    }
}

void WithPickerView::reloadTitles() {
    m_leftTitles.clear();
    m_leftTitles << allItemsTitle().toUpper();
    for (const ManagedObject* f : _folders) m_leftTitles << titleOf(f).toUpper();
    m_rightTitles.clear();
    for (const ManagedObject* item : itemsOfLeftRow(m_leftRow)) m_rightTitles << titleOf(item);
    emit pickerChanged();
}

ManagedObject* WithPickerView::itemAt(int leftRow, int rightRow) const {
    const std::vector<ManagedObject*> items = itemsOfLeftRow(leftRow);
    if (rightRow < 0 || rightRow >= static_cast<int>(items.size())) return nullptr;
    return items[static_cast<size_t>(rightRow)];
}

void WithPickerView::pickerSelected(int leftRow, int rightRow) {
    if (leftRow < 0 || leftRow > static_cast<int>(_folders.size())) return;
    const bool folderChanged = leftRow != m_leftRow;
    m_leftRow = leftRow;
    // A new folder starts its items at the top.
    m_rightRow = folderChanged ? 0 : rightRow;
    reloadTitles();
    if (ManagedObject* item = itemAt(m_leftRow, m_rightRow)) itemChosen(item);
}
