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

    function choose(row) { controller.didSelectRow(row); }

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
        model: controller.rows
        currentIndex: controller.selectedRow
        highlightFollowsCurrentItem: false

        delegate: AbstractButton {
            id: row
            required property int index
            required property var modelData  // text, icon, available

            width: ListView.view.width
            height: 58
            enabled: modelData.available
            opacity: enabled ? 1.0 : 0.4
            Accessible.name: modelData.text
            onClicked: (ListView.view.parent as GlobalMenuView).choose(index)

            background: Rectangle {
                color: row.pressed || row.ListView.isCurrentItem
                       ? Colorer.lighterColorForColor(Colorer.darkGreyBlueColor) : "transparent"
                Rectangle {
                    visible: row.ListView.isCurrentItem
                    width: 4
                    height: parent.height
                    color: Colorer.lightBlueColor
                }
            }

            Glyph {
                id: glyph
                anchors.left: parent.left
                anchors.leftMargin: 24
                anchors.verticalCenter: parent.verticalCenter
                width: 24
                height: 24
                name: row.modelData.icon
                color: Colorer.backgColor
            }
            Text {
                anchors.left: glyph.right
                anchors.leftMargin: 18
                anchors.verticalCenter: parent.verticalCenter
                text: row.modelData.text
                font.pixelSize: 20
                font.bold: true
                color: Colorer.backgColor
            }
        }
    }
}
