import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists

// The side menu: the three library lists, the current one marked.
Rectangle {
    id: menu

    // The list kind on the top screen; set by the window.
    property alias topScreenKind: controller.topScreenKind
    // Emitted with the list kind the user chose.
    signal showList(string typeOfItems)

    color: Colorer.darkGreyBlueColor

    GlobalMenuVC {
        id: controller
        onShowList: (kind) => menu.showList(kind)
    }

    Text {
        id: heading
        x: 24
        y: 28
        text: "Quillo"
        font.pixelSize: 26
        font.bold: true
        color: Colorer.backgColor
        Accessible.ignored: true
    }

    ListView {
        id: rows
        objectName: "globalMenuRows"
        anchors.top: heading.bottom
        anchors.topMargin: 24
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        interactive: false
        model: controller.texts

        delegate: ItemDelegate {
            id: row
            required property int index
            required property string modelData

            width: ListView.view.width
            height: 58
            enabled: controller.isAvailable(index)
            opacity: enabled ? 1.0 : 0.4
            Accessible.name: modelData
            onClicked: controller.didSelectRow(index)

            background: Rectangle {
                readonly property bool selected: row.index === controller.selectedRow
                color: row.pressed || selected ? Colorer.lighterColorForColor(Colorer.darkGreyBlueColor)
                                               : "transparent"
                Rectangle {
                    visible: parent.selected
                    width: 4
                    height: parent.height
                    color: Colorer.lightBlueColor
                }
            }

            contentItem: Item {
                Glyph {
                    id: icon
                    anchors.left: parent.left
                    anchors.leftMargin: 24
                    anchors.verticalCenter: parent.verticalCenter
                    width: 24
                    height: 24
                    name: controller.icons[row.index]
                    color: Colorer.backgColor
                }
                Text {
                    anchors.left: icon.right
                    anchors.leftMargin: 18
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.modelData
                    font.pixelSize: 20
                    font.bold: true
                    color: Colorer.backgColor
                }
            }
        }
    }
}
