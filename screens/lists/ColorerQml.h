#pragma once
// The palette as QML sees it: the interface colours and the colour of a
// colour number, every one taken from Colorer so that views never spell a colour.
#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "library/palette/Colorer.h"

class ColorerQml : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Colorer)
    QML_SINGLETON
    Q_PROPERTY(QColor barColor READ barColor CONSTANT)
    Q_PROPERTY(QColor mainColor READ mainColor CONSTANT)
    Q_PROPERTY(QColor backgColor READ backgColor CONSTANT)
    Q_PROPERTY(QColor darkBlueColor READ darkBlueColor CONSTANT)
    Q_PROPERTY(QColor lightBlueColor READ lightBlueColor CONSTANT)
    Q_PROPERTY(QColor mediumDarkBlueColor READ mediumDarkBlueColor CONSTANT)
    Q_PROPERTY(QColor mediumLightBlueColor READ mediumLightBlueColor CONSTANT)
    Q_PROPERTY(QColor darkGreyBlueColor READ darkGreyBlueColor CONSTANT)
    Q_PROPERTY(QColor grayColor READ grayColor CONSTANT)
    Q_PROPERTY(QColor redColor READ redColor CONSTANT)

public:
    using QObject::QObject;
    static QColor toQColor(const Color& c);

    QColor barColor() const { return toQColor(Colorer::barColor()); }
    QColor mainColor() const { return toQColor(Colorer::mainColor()); }
    QColor backgColor() const { return toQColor(Colorer::backgColor()); }
    QColor darkBlueColor() const { return toQColor(Colorer::darkBlueColor()); }
    QColor lightBlueColor() const { return toQColor(Colorer::lightBlueColor()); }
    QColor mediumDarkBlueColor() const { return toQColor(Colorer::mediumDarkBlueColor()); }
    QColor mediumLightBlueColor() const { return toQColor(Colorer::mediumLightBlueColor()); }
    QColor darkGreyBlueColor() const { return toQColor(Colorer::darkGreyBlueColor()); }
    QColor grayColor() const { return toQColor(Colorer::grayColor()); }
    QColor redColor() const { return toQColor(Colorer::redColor()); }

    Q_INVOKABLE QColor colorForNumber(int number) const { return toQColor(Colorer::colorForNumber(number)); }
    // Shades for pressed and muted states; a colour that cannot be shaded stays as it is.
    Q_INVOKABLE QColor darkerColorForColor(const QColor& color) const { return shaded(color, -0.1); }
    Q_INVOKABLE QColor veryDarkerColorForColor(const QColor& color) const { return shaded(color, -0.3); }
    Q_INVOKABLE QColor lighterColorForColor(const QColor& color) const { return shaded(color, 0.1); }
    Q_INVOKABLE QColor veryLighterColorForColor(const QColor& color) const { return shaded(color, 0.3); }

private:
    static QColor shaded(const QColor& color, double delta);
};
