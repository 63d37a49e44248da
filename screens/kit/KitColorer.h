#pragma once
// The palette for the views: every colour a kit or screen view draws comes
// from here (QML singleton "Colorer"), converted from the library's palette.
#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include "library/palette/Colorer.h"

QColor toQColor(const Color& c);
Color fromQColor(const QColor& c);

class KitColorer : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Colorer)
    QML_SINGLETON
    Q_PROPERTY(QColor barColor READ barColor CONSTANT)
    Q_PROPERTY(QColor mainColor READ mainColor CONSTANT)
    Q_PROPERTY(QColor backgColor READ backgColor CONSTANT)
    Q_PROPERTY(QColor darkBlueColor READ darkBlueColor CONSTANT)
    Q_PROPERTY(QColor lightBlueColor READ lightBlueColor CONSTANT)
    Q_PROPERTY(QColor darkGreyBlueColor READ darkGreyBlueColor CONSTANT)
    Q_PROPERTY(QColor grayColor READ grayColor CONSTANT)
    Q_PROPERTY(QColor redColor READ redColor CONSTANT)

public:
    using QObject::QObject;

    static QColor barColor() { return toQColor(Colorer::barColor()); }
    static QColor mainColor() { return toQColor(Colorer::mainColor()); }
    static QColor backgColor() { return toQColor(Colorer::backgColor()); }
    static QColor darkBlueColor() { return toQColor(Colorer::darkBlueColor()); }
    static QColor lightBlueColor() { return toQColor(Colorer::lightBlueColor()); }
    static QColor darkGreyBlueColor() { return toQColor(Colorer::darkGreyBlueColor()); }
    static QColor grayColor() { return toQColor(Colorer::grayColor()); }
    static QColor redColor() { return toQColor(Colorer::redColor()); }

    Q_INVOKABLE static QColor colorForNumber(int number);
    Q_INVOKABLE static QColor darkerColorForColor(const QColor& color);
    Q_INVOKABLE static QColor veryDarkerColorForColor(const QColor& color);
    Q_INVOKABLE static QColor lighterColorForColor(const QColor& color);
    Q_INVOKABLE static QColor veryLighterColorForColor(const QColor& color);
};
