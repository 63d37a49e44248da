#pragma once
// A panel with a two-wheel picker: folders on the left (row 0: every item),
// the chosen folder's items on the right. Subclasses say what the items are
// and what choosing one does.
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>
#include <string>
#include <vector>

class ManagedObject;

class WithPickerView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a base of the item panels")
    Q_PROPERTY(QStringList leftTitles READ leftTitles NOTIFY pickerChanged)
    Q_PROPERTY(QStringList rightTitles READ rightTitles NOTIFY pickerChanged)
    Q_PROPERTY(int leftRow READ leftRow NOTIFY pickerChanged)
    Q_PROPERTY(int rightRow READ rightRow NOTIFY pickerChanged)
    Q_PROPERTY(bool fullscr READ fullscr CONSTANT)

public:
    WithPickerView(std::string folderEntity, std::string itemEntity, bool fullscr, QObject* parent = nullptr);

    QStringList leftTitles() const { return m_leftTitles; }
    QStringList rightTitles() const { return m_rightTitles; }
    int leftRow() const { return m_leftRow; }
    int rightRow() const { return m_rightRow; }
    bool fullscr() const { return m_fullscr; }

    // Re-reads folders and items from the store and puts the wheels on the current item.
    void addPickerWithUpdatedItems();
    // A wheel moved: reload both and take the item at (left, right); a row
    // past the end of a list yields no item and changes nothing.
    Q_INVOKABLE void pickerSelected(int leftRow, int rightRow);
    // The item at (left, right), or none.
    ManagedObject* itemAt(int leftRow, int rightRow) const;

signals:
    void pickerChanged();

protected:
    // Row 0 on the left.
    virtual QString allItemsTitle() const { return QStringLiteral("All items"); }
    virtual ManagedObject* currentItem() const { return nullptr; }
    virtual void itemChosen(ManagedObject* item) { Q_UNUSED(item); }

private:
    std::vector<ManagedObject*> itemsOfLeftRow(int leftRow) const;
    void reloadTitles();

    std::string m_folderEntity;
    std::string m_itemEntity;
    bool m_fullscr;
    std::vector<ManagedObject*> _folders;
    std::vector<ManagedObject*> _allItems;
    QStringList m_leftTitles;
    QStringList m_rightTitles;
    int m_leftRow = 0;
    int m_rightRow = 0;
};
