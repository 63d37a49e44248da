import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit as Kit
import Quillo.Lists

// A library list screen: the table of its controller under the navigation
// bar (menu on the left, add on the right), re-read each time it shows, and
// the rename panel over the whole window while one is open.
StackScreen {
    id: view

    required property BaseTVC controller
    property alias tableName: table.objectName

    title: controller.title
    typeOfItems: controller.typeOfItems
    leftBarButton: "formenu"
    rightBarButton: "addButton"
    navigationBarHidden: controller.editView !== null
    Accessible.name: title

    onLeftBarButtonTapped: controller.menuButtonTapped()
    onRightBarButtonTapped: controller.addButtonTapped()
    StackView.onActivating: controller.setItemsAndReloadTable()
    StackView.onActivated: table.forceActiveFocus()
    StackView.onDeactivating: controller.stopPlaying()

    Connections {
        target: view.controller
        function onMenuRequested() { view.menuRequested() }
        function onPushScreen(url, properties) { view.pushRequested(url, properties) }
        function onEditViewChanged() {
            if (view.controller.editView)
                panel.setSource(Qt.resolvedUrl("panels/LoopOrFolderEditViewItem.qml"),
                                { editView: view.controller.editView })
            else
                panel.source = ""
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Kit.Colorer.backgColor
    }

    ListTable {
        id: table
        anchors.fill: parent
        controller: view.controller
    }

    // Space plays the current row in place, or stops what plays.
    Shortcut {
        sequence: "Space"
        enabled: view.StackView.status === StackView.Active && view.controller.editView === null
        onActivated: view.controller.playPausePressed(table.currentIndex)
    }

    // The rename panel lays itself out on the whole window.
    Loader {
        id: panel
        objectName: "renamePanel"
        parent: view.Window.contentItem
        z: 100
        onLoaded: (panel.item as Item).forceActiveFocus()
    }
}
