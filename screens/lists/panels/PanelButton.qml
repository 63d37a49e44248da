// A round icon button of the panels. It takes the touch for itself, so a
// touch on it never counts as a touch outside.
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit

AbstractButton {
    id: root

    property string image
    property color color: Kit.Colorer.backgColor

    Accessible.name: text.length > 0 ? text : Kit.Uier.meaningOf(image)
    focusPolicy: Qt.NoFocus

    contentItem: Item {}
    background: Kit.TintedIcon {
        name: root.image
        color: root.color
        scale: root.pressed ? Kit.Uier.pressScale : 1.0
    }
}
