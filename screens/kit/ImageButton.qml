// A button showing one of the icons in the given colour; it shrinks to 0.8
// while pressed and returns to full size when let go.
import QtQuick
import Quillo.Kit

Item {
    id: root

    property string image
    property color color: Colorer.mainColor
    property string accessibleName: Uier.meaningOf(image)
    property real iconSize: Math.min(width, height)
    property real touchMargin: 0
    signal clicked()

    Accessible.role: Accessible.Button
    Accessible.name: accessibleName

    TintedIcon {
        anchors.centerIn: parent
        width: root.iconSize
        height: root.iconSize
        name: root.image
        color: root.color
        scale: tap.pressed ? Uier.pressScale : 1.0
    }

    TapHandler {
        id: tap
        margin: root.touchMargin
        onTapped: root.clicked()
    }
}
