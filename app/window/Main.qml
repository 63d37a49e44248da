import QtQuick
import QtQuick.Controls.Basic
import Quillo.Lists
import Quillo.App

// Quillo's window: a stack of screens under a navigation bar, the loops list
// first, with the side menu under the left edge.
ApplicationWindow {
    id: window

    required property RootScreens shell
    readonly property StackScreen topScreen: stack.currentItem as StackScreen

    title: "Quillo"
    width: 390
    height: 844
    minimumWidth: 320
    minimumHeight: 568
    visible: true
    color: Colorer.darkGreyBlueColor

    function showList(typeOfItems) {
        // Only the loops list is part of the window so far.
        if (typeOfItems === "LoopFolder")
            stack.replace(null, loopsList);
        window.shell.resetTopView();
    }

    Shortcut {
        sequence: "Escape"
        enabled: window.shell.sideMenuOpen
        onActivated: window.shell.resetTopView()
    }

    SlidingContainer {
        id: sliding
        objectName: "slidingContainer"
        anchors.fill: parent
        open: window.shell.sideMenuOpen
        anchorRightPeekAmount: window.shell.anchorRightPeekAmount
        anchorLeftRevealAmount: window.shell.anchorLeftRevealAmount
        edgeTop: bar.height
        shadowColor: Colorer.veryDarkerColorForColor(Colorer.darkGreyBlueColor)
        onRequestOpen: (open) => window.shell.sideMenuOpen = open

        under: GlobalMenuView {
            objectName: "globalMenu"
            anchors.fill: parent
            topScreenKind: window.topScreen ? window.topScreen.typeOfItems : ""
            onShowList: (kind) => window.showList(kind)
        }

        Rectangle {
            anchors.fill: parent
            color: Colorer.backgColor
        }

        NavBar {
            id: bar
            objectName: "navigationBar"
            width: parent.width
            visible: !(window.topScreen && window.topScreen.navigationBarHidden)
            height: visible ? implicitHeight : 0
            color: window.shell.navBarColor
            titleColor: window.shell.navTitleColor
            title: window.topScreen ? window.topScreen.title : ""
            leftButton: window.topScreen ? window.topScreen.leftBarButton : ""
            onLeftButtonTapped: if (window.topScreen) window.topScreen.leftBarButtonTapped()
        }

        StackView {
            id: stack
            objectName: "screenStack"
            anchors.top: bar.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            initialItem: loopsList
        }
    }

    Component {
        id: loopsList
        LoopsView {
            objectName: "loopsList"
        }
    }

    DropArea {
        anchors.fill: parent
        keys: ["text/uri-list"]
        onDropped: (drop) => {
            window.shell.importDroppedUrls(drop.urls);
            drop.accept(Qt.CopyAction);
        }
    }

    Toast {
        id: toast
        objectName: "toast"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 32
        color: Colorer.darkGreyBlueColor
        textColor: Colorer.backgColor
    }

    // Any screen may ask for the side menu (its menu button, a gesture).
    Connections {
        target: window.topScreen
        function onMenuRequested() { window.shell.anchorTopViewToRight(); }
    }

    Connections {
        target: window.shell
        function onMessage(text) { toast.show(text); }
    }
}
