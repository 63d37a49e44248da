import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists

// A navigation bar button: a 22 x 22 icon tinted in the bar's text colour,
// darker and smaller while pressed.
AbstractButton {
    id: button

    property string iconName
    property color tint: "white"

    implicitWidth: 44
    implicitHeight: 44
    focusPolicy: Qt.NoFocus

    contentItem: Item {
        Glyph {
            anchors.centerIn: parent
            width: 22
            height: 22
            name: button.iconName
            color: button.pressed ? Colorer.darkerColorForColor(button.tint) : button.tint
            scale: button.pressed ? 0.8 : 1.0
            Behavior on scale { NumberAnimation { duration: 100 } }
        }
    }
}
