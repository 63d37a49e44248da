// A plain or round coloured button. With actions on, pressing darkens its
// colour and lifting (inside, outside or cancelled) lightens it back.
import QtQuick
import Quillo.Kit

Rectangle {
    id: root

    property color baseColor: Colorer.mainColor
    property bool round: true
    property bool actions: true
    property alias text: label.text
    property string accessibleName: label.text
    signal clicked()

    // Shown colour: changes step by step with the presses, like the palette's arithmetic.
    property color _shown: baseColor
    onBaseColorChanged: _shown = baseColor

    color: _shown
    radius: round ? width / 2 : 0
    Accessible.role: Accessible.Button
    Accessible.name: accessibleName

    KitLabel {
        id: label
        anchors.centerIn: parent
        width: parent.width * 0.8
        height: parent.height * 0.5
        visible: text.length > 0
    }

    TapHandler {
        onPressedChanged: {
            if (!root.actions)
                return
            root._shown = pressed ? Uier.pushdownColor(root._shown) : Uier.pushupColor(root._shown)
        }
        onTapped: root.clicked()
    }
}
