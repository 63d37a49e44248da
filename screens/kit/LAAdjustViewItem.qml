// Draws a drag-to-adjust control and feeds it the pan and the tap. All
// decisions (value, range, enlarging, what is told to whom) are its
// controller's; this view only shows them.
import QtQuick
import Quillo.Kit

AnimatedViewItem {
    id: root

    required property LAAdjustView adjuster

    view: adjuster
    z: adjuster.fullscr ? 1000 : 0   // enlarged, it comes to the front

    Accessible.role: Accessible.Slider
    Accessible.name: adjuster.label
    activeFocusOnTab: true
    Keys.onUpPressed: adjuster.nudge(1)
    Keys.onRightPressed: adjuster.nudge(1)
    Keys.onDownPressed: adjuster.nudge(-1)
    Keys.onLeftPressed: adjuster.nudge(-1)

    // The inner circle and everything on it stay centred while the control moves.
    Item {
        id: inner
        width: root.adjuster.circleFrame.width
        height: width
        x: (root.width - width) / 2
        y: (root.height - height) / 2
        Behavior on width { enabled: root.moving; NumberAnimation { duration: root.moveMs; easing.type: Easing.InOutQuad } }

        Rectangle {
            anchors.fill: parent
            radius: width / 2
            color: "transparent"
            border.width: Math.max(1, width * 0.03)
            border.color: Qt.rgba(root.adjuster.titleColor.r, root.adjuster.titleColor.g, root.adjuster.titleColor.b, 0.55)
        }

        // Volume: the circle filled from the bottom, a rectangular clip over a whole disc.
        Item {
            visible: root.adjuster.indicator === LAAdjustView.Fill
            readonly property real level: root.adjuster.circleFrame.height > 0
                ? root.adjuster.indicatorFrame.height / root.adjuster.circleFrame.height : 0
            clip: true
            width: inner.width
            height: inner.height * level
            y: inner.height - height
            Rectangle {
                width: inner.width
                height: inner.height
                y: -parent.y
                radius: width / 2
                color: Qt.rgba(root.adjuster.titleColor.r, root.adjuster.titleColor.g, root.adjuster.titleColor.b,
                               root.adjuster.fillAlpha)
            }
        }

        // Tempo: a dot at the playing step's place on the rim.
        Rectangle {
            visible: root.adjuster.indicator === LAAdjustView.Step
            readonly property rect place: root.adjuster.indicatorFrame
            readonly property real scaleToShown: root.adjuster.circleFrame.width > 0
                ? inner.width / root.adjuster.circleFrame.width : 1
            x: (place.x - root.adjuster.circleFrame.x) * scaleToShown
            y: (place.y - root.adjuster.circleFrame.y) * scaleToShown
            width: place.width * scaleToShown
            height: width
            radius: width / 2
            color: root.adjuster.titleColor
        }

        Text {
            anchors.centerIn: parent
            // Clear of the step dot on the rim.
            width: parent.width * 0.64
            height: parent.height * 0.5
            text: root.adjuster.label
            color: root.adjuster.titleColor
            font.bold: true
            font.pixelSize: Math.max(1, root.adjuster.labelPixelSize)
            fontSizeMode: Text.Fit
            minimumPixelSize: Math.max(1, root.adjuster.labelMinimumPixelSize)
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
    }

    DragHandler {
        id: drag
        target: null
        onActiveChanged: active ? root.adjuster.panBegan() : root.adjuster.panEnded()
        onTranslationChanged: if (active) root.adjuster.panChanged(translation.x, translation.y)
    }

    TapHandler {
        onTapped: {
            root.forceActiveFocus()
            root.adjuster.pressed()
        }
    }
}
