// One instrument full screen: the top panel in the sound's colour (photo,
// name, volume, share; the name opens the sound editor), sixteen round step
// buttons in four rows, and the two-wheel sound picker.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.LoopEditor

Rectangle {
    id: root

    required property InstrumentView panel
    color: Colorer.backgColor

    readonly property real margin: 12
    readonly property real topHeight: Framr.heiForBottomOrTopPanel

    component Wheel: Tumbler {
        id: wheel
        visibleItemCount: Math.max(3, Math.min(7, Math.floor(height / 34)) | 1)
        delegate: Component {
            Text {
                required property var modelData
                required property int index
                text: modelData
                color: "white"
                font.bold: true
                font.pixelSize: 17
                elide: Text.ElideRight
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                opacity: 1.0 - Math.abs(Tumbler.displacement) / (wheel.visibleItemCount / 2)
            }
        }
    }

    // ---- Top panel
    Rectangle {
        id: top
        objectName: "instrumentTopPanel"
        width: root.width
        height: root.topHeight
        color: root.panel.color

        PhotoView {
            id: photo
            x: root.margin
            width: top.height - 2 * root.margin
            height: width
            anchors.verticalCenter: parent.verticalCenter
            opacity: root.panel.photoSource !== "" ? 1 : 0
            source: root.panel.photoSource
        }

        KitLabel {
            id: titleLabel
            anchors.left: photo.right
            anchors.leftMargin: root.margin
            anchors.right: volume.left
            anchors.rightMargin: root.margin
            anchors.verticalCenter: parent.verticalCenter
            height: top.height * 0.4
            text: root.panel.title
            color: Colorer.backgColor
            horizontalAlignment: Text.AlignLeft
        }

        // A clear button over the title: opens the sound editor.
        Item {
            objectName: "editSoundButton"
            anchors.fill: titleLabel
            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Edit sound")
            TapHandler { onTapped: root.panel.editButtonPressed() }
        }

        Binding {
            target: root.panel.volumeV
            property: "initialFrame"
            value: Qt.rect(0, 0, top.height - 2 * root.margin, top.height - 2 * root.margin)
        }
        Binding { target: root.panel.volumeV; property: "color"; value: root.panel.color }
        Item {
            id: volume
            anchors.right: share.left
            anchors.rightMargin: root.margin
            anchors.verticalCenter: parent.verticalCenter
            width: top.height - 2 * root.margin
            height: width
            LAAdjustViewItem {
                objectName: "instrumentVolume"
                adjuster: root.panel.volumeV
            }
        }

        ImageButton {
            id: share
            objectName: "shareSoundButton"
            anchors.right: parent.right
            anchors.rightMargin: root.margin
            anchors.verticalCenter: parent.verticalCenter
            width: top.height * 0.4
            height: width
            image: "shareButton"
            color: Colorer.backgColor
            onClicked: root.panel.shareButtonPressed()
        }
    }

    // ---- Step buttons: step i at row i / 4, column i % 4.
    Item {
        id: steps
        readonly property real side: Math.min(root.width - 2 * root.margin, (root.height - top.height) * 0.58)
        readonly property real cell: side / 4
        x: (root.width - side) / 2
        y: top.height + root.margin
        width: side
        height: side

        Repeater {
            model: 16
            delegate: Rectangle {
                id: step
                required property int index
                objectName: "step" + index
                x: (index % 4) * steps.cell + steps.cell * 0.08
                y: Math.floor(index / 4) * steps.cell + steps.cell * 0.08
                width: steps.cell * 0.84
                height: width
                radius: width / 2
                color: root.panel.tactColors[index]
                scale: root.panel.playingTact === index ? 0.85 : 1
                Behavior on scale { NumberAnimation { duration: 60 } }
                Accessible.role: Accessible.CheckBox
                Accessible.name: qsTr("Step %1").arg(index + 1)
                Accessible.checked: (root.panel.tacts >> (15 - index)) & 1
                TapHandler { onTapped: root.panel.tactPressed(step.index) }
            }
        }
    }

    // ---- The sound picker: folders on the left, their sounds on the right.
    Item {
        id: picker
        objectName: "soundPicker"
        x: root.margin
        y: steps.y + steps.height + root.margin
        width: root.width - 2 * root.margin
        height: root.height - y - root.margin

        Rectangle {
            width: picker.width
            height: picker.height
            radius: 12
            color: Colorer.veryDarkerColorForColor(root.panel.color)
            Row {
                anchors.fill: parent
                Wheel {
                    id: left
                    objectName: "folderWheel"
                    width: picker.width / 2
                    height: picker.height
                    model: root.panel.leftTitles
                    currentIndex: root.panel.leftRow
                    onMovingChanged: if (!moving) root.panel.pickerSelected(currentIndex, right.currentIndex)
                }
                Wheel {
                    id: right
                    objectName: "soundWheel"
                    width: picker.width / 2
                    height: picker.height
                    model: root.panel.rightTitles
                    currentIndex: root.panel.rightRow
                    onMovingChanged: if (!moving) root.panel.pickerSelected(left.currentIndex, currentIndex)
                }
            }
        }
    }
}
