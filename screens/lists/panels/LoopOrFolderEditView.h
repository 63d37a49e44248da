#pragma once
// The name-and-folder panel with Cancel and Done, growing as a circle from
// the control that opened it. Done hands the name and folder to the delegate
// and closes; Cancel only closes. QML owners get the same as signals.
#include "screens/lists/panels/NameAndFolderDelegate.h"
#include "screens/lists/panels/NameNFlderChoosrView.h"

class LoopOrFolderEditView : public NameNFlderChoosrView {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("opened by a list or an editor")

public:
    // The corner factor of the start rectangle the panel grows from.
    static constexpr double kStartCornerKoeff = 0.3;

    LoopOrFolderEditView(const QString& name, const QString& folder, const QString& folderType,
                         NameAndFolderDelegate* delegate, QObject* parent = nullptr);

    // Grows from the start rectangle (on screen) to the full-screen circle.
    Q_INVOKABLE void showFrom(const QRectF& start);

    void donePressed() override;
    void cancelPressed() override;

signals:
    void applied(const QString& name, const QString& folder);
    void removed();

private:
    NameAndFolderDelegate* m_delegate;
};
