// The folder chooser over the whole screen: the folders of one kind with the
// current one checked, or the field that names a new folder.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit
import Quillo.Lists

Rectangle {
    id: root

    required property FoldersView chooser

    readonly property rect tableFrame: { Kit.Framr.revision; return chooser.tableFrame }
    readonly property rect addFrame: { Kit.Framr.revision; return chooser.addButtonFrame }
    readonly property rect fieldFrame: { Kit.Framr.revision; return chooser.nameFieldFrame }
    readonly property rect okFrame: { Kit.Framr.revision; return chooser.okButtonFrame }
    readonly property rect cancelFrame: { Kit.Framr.revision; return chooser.cancelButtonFrame }

    color: Kit.Colorer.mainColor
    Component.onCompleted: Kit.Animator.scaleFromZero(root)

    // A touch anywhere the controls do not take.
    MouseArea {
        objectName: "foldersOutside"
        anchors.fill: parent
        onClicked: {
            const editing = newName.activeFocus
            newName.focus = false
            root.chooser.touchedOutside(editing)
        }
    }

    ListView {
        id: table
        objectName: "foldersTable"
        x: root.tableFrame.x
        y: root.tableFrame.y
        width: root.tableFrame.width
        height: root.tableFrame.height
        clip: true
        model: root.chooser.folders
        scale: root.chooser.adding ? 0.001 : 1.0
        Behavior on scale { NumberAnimation { duration: 300 } }
        spacing: 6

        delegate: AbstractButton {
            id: row
            required property int index
            required property string modelData
            width: ListView.view.width
            height: Kit.Framr.heightForUsualCell * 0.8
            focusPolicy: Qt.NoFocus
            Accessible.name: modelData
            onClicked: root.chooser.chooseRow(index)

            background: Rectangle {
                radius: height / 2
                color: row.pressed ? Qt.darker(Kit.Colorer.mainColor, 1.15) : Qt.darker(Kit.Colorer.mainColor, 1.08)
            }
            contentItem: Item {}

            Item {
                anchors.fill: parent
                Kit.TintedIcon {
                    id: icon
                    x: height * 0.5
                    anchors.verticalCenter: parent.verticalCenter
                    width: row.height * 0.5
                    height: width
                    name: "folderIcon"
                    color: Kit.Colorer.backgColor
                }
                Text {
                    anchors.left: icon.right
                    anchors.leftMargin: row.height * 0.3
                    anchors.right: check.left
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.modelData
                    elide: Text.ElideRight
                    font.bold: true
                    font.pixelSize: row.height * 0.34
                    color: Kit.Colorer.backgColor
                }
                Text {
                    id: check
                    anchors.right: parent.right
                    anchors.rightMargin: row.height * 0.4
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.index === root.chooser.checkedRow
                    text: "\u2713"
                    font.bold: true
                    font.pixelSize: row.height * 0.45
                    color: Kit.Colorer.backgColor
                    Accessible.name: qsTr("Chosen")
                }
            }
        }
    }

    PanelButton {
        objectName: "addFolderButton"
        image: "addButton"
        text: qsTr("New folder")
        x: root.addFrame.x
        y: root.addFrame.y
        width: root.addFrame.width
        height: root.addFrame.height
        visible: !root.chooser.adding
        onClicked: {
            newName.text = root.chooser.defaultFolderName
            root.chooser.addPressed()
            newName.forceActiveFocus()
        }
    }

    Kit.KitTextField {
        id: newName
        objectName: "newFolderField"
        x: root.fieldFrame.x
        y: root.fieldFrame.y
        width: root.fieldFrame.width
        height: root.fieldFrame.height
        visible: root.chooser.adding
        horizontalAlignment: Text.AlignHCenter
        Accessible.name: qsTr("Folder name")
    }

    PanelButton {
        objectName: "newFolderOk"
        image: "okButton"
        text: qsTr("Done")
        visible: root.chooser.adding
        x: root.okFrame.x
        y: root.okFrame.y
        width: root.okFrame.width
        height: root.okFrame.height
        onClicked: root.chooser.doneAdding(newName.text)
    }

    PanelButton {
        objectName: "newFolderCancel"
        image: "cancelButton"
        text: qsTr("Cancel")
        visible: root.chooser.adding
        x: root.cancelFrame.x
        y: root.cancelFrame.y
        width: root.cancelFrame.width
        height: root.cancelFrame.height
        onClicked: {
            newName.focus = false
            root.chooser.cancelAdding()
        }
    }

    Keys.onEscapePressed: root.chooser.adding ? root.chooser.cancelAdding() : root.chooser.touchedOutside(false)
}
