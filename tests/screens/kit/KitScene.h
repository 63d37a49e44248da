#pragma once
// Loads kit QML into an offscreen window with the real controllers, drives it
// with synthetic mouse events and moves animations on a manual clock.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "screens/kit/KitSetup.h"
#include "tests/screens/OffscreenApplication.h"
#include "screens/kit/internal/ManualAnimationClock.h"

namespace quillo::kit::testing {


class KitScene {
public:
    explicit KitScene(int width = 390, int height = 844) {
        addTo(engine);
        window.resize(width, height);
    }
    ~KitScene() { delete root; }

    // Builds the QML (which imports QtQuick, Quillo.Kit and Quillo.Kit as Kit) with the given
    // controllers as its initial properties, shows it and hands the window to Framr.
    QQuickItem* load(const QByteArray& qml, const QVariantMap& properties = {}) {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nimport Quillo.Kit\nimport Quillo.Kit as Kit\n" + qml, QUrl(QStringLiteral("qrc:/test/Scene.qml")));
        if (!component.isReady()) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        root = qobject_cast<QQuickItem*>(component.createWithInitialProperties(properties));
        if (!root) {
            ADD_FAILURE() << component.errorString().toStdString();
            return nullptr;
        }
        root->setParentItem(window.contentItem());
        window.show();
        clock.ensureInstalled();
        QObject* framr = engine.singletonInstance<QObject*>(qmlTypeId("Quillo.Kit", 1, 0, "Framr"));
        framr->setProperty("window", QVariant::fromValue(&window));
        QCoreApplication::processEvents();
        return root;
    }

    QQuickItem* find(const char* objectName) const { return root->findChild<QQuickItem*>(QString::fromLatin1(objectName)); }

    void press(QPointF at) { QTest::mousePress(&window, Qt::LeftButton, {}, at.toPoint()); }
    void moveTo(QPointF at) { QTest::mouseMove(&window, at.toPoint()); }
    void release(QPointF at) { QTest::mouseRelease(&window, Qt::LeftButton, {}, at.toPoint()); }
    void tap(QPointF at) { QTest::mouseClick(&window, Qt::LeftButton, {}, at.toPoint()); }

    ManualAnimationClock clock;
    QQmlEngine engine;
    QQuickWindow window;
    QQuickItem* root = nullptr;
};

}  // namespace quillo::kit::testing
