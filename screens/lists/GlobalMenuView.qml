pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit
import Quillo.Lists

// The side menu: the three library lists, the current one marked, and below
// them the settings row once the settings screen is part of the program.
Rectangle {
    id: menu

    // The list kind on the top screen; set by the window.
    property alias topScreenKind: controller.topScreenKind
    // Emitted with the list kind the user chose.
    signal showList(string typeOfItems)
    // Emitted with the QML file of another screen the user chose (settings).
    signal showScreen(string url)

    function choose(row) { controller.didSelectRow(row); }

    color: Kit.Colorer.darkGreyBlueColor

    GlobalMenuVC {
        id: controller
        onShowList: (kind) => menu.showList(kind)
        onShowScreen: (url) => menu.showScreen(url)
    }

    Text {
        id: heading
        x: 24
        y: 28
        text: "Quillo"
        font.pixelSize: 26
        font.bold: true
        color: Kit.Colorer.backgColor
        Accessible.ignored: true
    }

    component MenuRow: AbstractButton {
        id: row
        property string iconName
        property bool current
        width: menu.width
        height: Kit.Framr.heightForUsualCell
        focusPolicy: Qt.NoFocus
        Accessible.name: text

        background: Rectangle {
            color: row.pressed || row.current
                   ? Kit.Colorer.lighterColorForColor(Kit.Colorer.darkGreyBlueColor) : "transparent"
            Rectangle {
                visible: row.current
                width: 4
                height: parent.height
                color: Kit.Colorer.lightBlueColor
            }
        }
        contentItem: Item {}

        Kit.TintedIcon {
            readonly property rect frame: Kit.Framr.ffGlobalCellIcon
            x: frame.x; y: frame.y; width: frame.width; height: frame.height
            name: row.iconName
            color: Kit.Colorer.backgColor
        }
        Text {
            readonly property rect frame: Kit.Framr.ffGlobalCellLabel
            x: frame.x; y: frame.y; width: frame.width; height: frame.height
            verticalAlignment: Text.AlignVCenter
            text: row.text
            elide: Text.ElideRight
            font.pixelSize: Math.round(height * 0.32)
            font.bold: true
            color: Kit.Colorer.backgColor
        }
    }

    Column {
        id: rows
        objectName: "globalMenuRows"
        anchors.top: heading.bottom
        anchors.topMargin: 24
        width: parent.width

        Repeater {
            model: controller.rows
            MenuRow {
                required property int index
                required property var modelData  // text, icon, available
                text: modelData.text
                iconName: modelData.icon
                current: index === controller.selectedRow
                onClicked: menu.choose(index)
            }
        }
    }

    // The second section: settings, shown once its screen is there.
    MenuRow {
        objectName: "settingsRow"
        anchors.top: rows.bottom
        anchors.topMargin: 24
        visible: controller.settingsAvailable
        text: controller.settingsText
        iconName: controller.settingsIcon
        current: controller.selectedRow < 0
        onClicked: controller.didSelectSettings()
    }
}
