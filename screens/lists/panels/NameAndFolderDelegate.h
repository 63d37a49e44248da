#pragma once
// Whoever opens a rename panel: it applies the chosen name and folder and
// takes the panel away again (showing its navigation bar).
#include <QString>

class NameAndFolderDelegate {
public:
    virtual ~NameAndFolderDelegate() = default;
    virtual void applyName(const QString& name, const QString& folder) = 0;
    virtual void removEditView() = 0;
};
