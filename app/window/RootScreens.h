#pragma once
// What the window's root arrangement needs from C++: the navigation bar's
// colours, whether the side menu is showing, and the import of files handed
// over on the command line, by a drop on the window or by another quillo.
#include <QColor>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QtQml/qqmlregistration.h>
#include <string>
#include <vector>

class AppDelegate;

// The navigation bar's look: an opaque bar in the bar colour with the title
// (and large title) in the background colour.
struct NavBarAppearance {
    QColor backgroundColor;
    QColor titleColor;
    QColor largeTitleColor;
    QColor barTintColor;
    bool translucent = false;
};

class RootScreens : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application creates the root screens")
    Q_PROPERTY(QColor navBarColor READ navBarColor CONSTANT)
    Q_PROPERTY(QColor navTitleColor READ navTitleColor CONSTANT)
    Q_PROPERTY(double anchorRightPeekAmount READ anchorRightPeekAmount CONSTANT)
    Q_PROPERTY(double anchorLeftRevealAmount READ anchorLeftRevealAmount CONSTANT)
    Q_PROPERTY(bool sideMenuOpen READ sideMenuOpen WRITE setSideMenuOpen NOTIFY sideMenuOpenChanged)

public:
    // The side menu leaves this much of the top screen showing at the right...
    static constexpr double kAnchorRightPeekAmount = 100;
    // ...and reveals this much of itself.
    static constexpr double kAnchorLeftRevealAmount = 250;

    explicit RootScreens(AppDelegate* app, QObject* parent = nullptr);

    static NavBarAppearance customNavBarAppearance();
    QColor navBarColor() const { return appearance_.backgroundColor; }
    QColor navTitleColor() const { return appearance_.titleColor; }
    double anchorRightPeekAmount() const { return kAnchorRightPeekAmount; }
    double anchorLeftRevealAmount() const { return kAnchorLeftRevealAmount; }

    bool sideMenuOpen() const { return sideMenuOpen_; }
    void setSideMenuOpen(bool open);
    Q_INVOKABLE void anchorTopViewToRight() { setSideMenuOpen(true); }
    Q_INVOKABLE void resetTopView() { setSideMenuOpen(false); }

    // Imports each file as a new sound in "Imported", in order, moving it into
    // the library; a file that is not a sound is left where it is. Says what
    // happened through `message`. Returns how many were imported.
    Q_INVOKABLE int importHandedOverFiles(const QStringList& paths);
    // The same for one file handed over by another quillo through the
    // library's local socket; returns the answer line for that program
    // ("ok<TAB>NAME" or "error<TAB>MESSAGE").
    std::string importHandedOverFileAnswering(const QString& path);
    // Files dropped on the window; anything that is not a local file is ignored.
    Q_INVOKABLE int importDroppedUrls(const QList<QUrl>& urls);

signals:
    void sideMenuOpenChanged();
    // A short text for the user, shown briefly over the screen.
    void message(const QString& text);
    void soundsImported(int count);

private:
    // Imports in order; each file's answer line goes to `answers` when given.
    int importFiles(const QStringList& paths, std::vector<std::string>* answers);

    AppDelegate* app_;
    NavBarAppearance appearance_;
    bool sideMenuOpen_ = false;
};
