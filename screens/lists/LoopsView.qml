import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists

// The loops list screen: the loop folders and their loops, from the store.
StackScreen {
    id: view

    title: controller.title
    typeOfItems: controller.typeOfItems
    leftBarButton: "formenu"
    Accessible.name: title

    onLeftBarButtonTapped: controller.menuButtonTapped()
    StackView.onActivating: controller.setItemsAndReloadTable()
    StackView.onDeactivating: controller.stopPlaying()

    LoopsTVC {
        id: controller
        onMenuRequested: view.menuRequested()
    }

    Rectangle {
        anchors.fill: parent
        color: Colorer.backgColor
    }

    LoopsTable {
        objectName: "loopsTable"
        anchors.fill: parent
        controller: controller
    }
}
