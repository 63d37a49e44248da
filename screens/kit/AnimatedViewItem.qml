// Draws an AnimatedView: a rounded rectangle that follows its controller's
// frame and corner radius, moving both together when the controller animates.
// Children placed relative to the centre keep their place while it moves.
import QtQuick
import Quillo.Kit

Rectangle {
    id: root

    property AnimatedView view

    readonly property int moveMs: view ? view.moveDuration * 1000 : 300
    readonly property bool moving: view ? view.animating : false

    x: view ? view.frame.x : 0
    y: view ? view.frame.y : 0
    width: view ? view.frame.width : 0
    height: view ? view.frame.height : 0
    radius: view ? view.cornerRadius : 0
    color: view ? view.color : "transparent"

    Behavior on x { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }
    Behavior on y { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }
    Behavior on width { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }
    Behavior on height { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }
    Behavior on radius { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }
}
