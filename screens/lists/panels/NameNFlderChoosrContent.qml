// What a name-and-folder panel shows, in screen coordinates: the name field
// and the folder button, and the folder chooser over everything while open.
// The sound editor's panel and the rename panel put it inside their circle.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit
import Quillo.Lists

Item {
    id: root

    required property NameNFlderChoosrView panel

    readonly property rect nameFrame: { Kit.Framr.revision; return panel.nameFrame }
    readonly property rect folderFrame: { Kit.Framr.revision; return panel.folderButtonFrame }
    readonly property rect iconFrame: { Kit.Framr.revision; return panel.folderIconFrame }
    // Everything but the field shrinks away while the name is edited.
    readonly property real othersScale: panel.editingName ? 0.001 : 1.0

    width: Kit.Framr.scrnWid
    height: Kit.Framr.scrnHei

    // A touch outside the field ends the edit.
    MouseArea {
        anchors.fill: parent
        enabled: root.panel.editingName
        onClicked: name.focus = false
    }

    Kit.KitTextField {
        id: name
        objectName: "nameField"
        x: root.nameFrame.x
        y: root.nameFrame.y
        width: root.nameFrame.width
        height: root.nameFrame.height
        text: root.panel.name
        horizontalAlignment: Text.AlignHCenter
        Accessible.name: qsTr("Name")
        onTextEdited: root.panel.typedText = text
        onActiveFocusChanged: {
            if (activeFocus) root.panel.beginEditingName()
            else root.panel.finishEditing()
        }
        Connections {
            target: root.panel
            function onNameChanged() { name.text = root.panel.name }
        }
    }

    AbstractButton {
        id: folderButton
        objectName: "folderButton"
        visible: root.panel.hasFolder
        x: root.folderFrame.x
        y: root.folderFrame.y
        width: root.folderFrame.width
        height: root.folderFrame.height
        scale: root.othersScale
        Behavior on scale { NumberAnimation { duration: 300 } }
        focusPolicy: Qt.NoFocus
        Accessible.name: qsTr("Folder %1").arg(root.panel.folderName)
        onClicked: root.panel.openFoldersView()

        background: Rectangle {
            radius: height / 2
            color: Kit.Colorer.backgColor
            opacity: folderButton.pressed ? 0.8 : 1.0
        }
        contentItem: Item {}

        Item {
            anchors.fill: parent
            Kit.TintedIcon {
                id: icon
                x: root.iconFrame.x
                y: root.iconFrame.y
                width: root.iconFrame.width
                height: root.iconFrame.height
                name: "folderIcon"
                color: Kit.Colorer.mainColor
            }
            Text {
                x: icon.x + icon.width + root.iconFrame.x
                width: folderButton.width - x - root.iconFrame.width
                height: folderButton.height
                verticalAlignment: Text.AlignVCenter
                horizontalAlignment: Text.AlignHCenter
                text: root.panel.folderName
                elide: Text.ElideRight
                font.bold: true
                font.pixelSize: Math.max(Kit.Uier.minTextPixelSize, folderButton.height * 0.42)
                color: Kit.Colorer.mainColor
            }
        }
    }

    // The chooser pops up over everything while the panel has one open.
    Loader {
        id: chooser
        anchors.fill: parent
    }
    Connections {
        target: root.panel
        function onFoldersViewChanged() {
            if (root.panel.foldersView)
                chooser.setSource(Qt.resolvedUrl("FoldersViewItem.qml"), { chooser: root.panel.foldersView })
            else
                chooser.source = ""
        }
    }
}
