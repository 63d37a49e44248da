import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
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

    // A new list of the kind becomes the only screen.
    function showList(typeOfItems) {
        const list = typeOfItems === "TrackFolder" ? tracksList
                   : typeOfItems === "SoundFolder" ? soundsList : loopsList
        stack.replace(null, list)
        window.shell.resetTopView()
    }
    function showScreen(url) {
        stack.replace(null, url)
        window.shell.resetTopView()
    }

    Component.onCompleted: Framr.window = window

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
            onShowScreen: (url) => window.showScreen(url)
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
            rightButton: window.topScreen ? window.topScreen.rightBarButton : ""
            onLeftButtonTapped: if (window.topScreen) window.topScreen.leftBarButtonTapped()
            onRightButtonTapped: if (window.topScreen) window.topScreen.rightBarButtonTapped()
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
    Component {
        id: tracksList
        TracksView {
            objectName: "tracksList"
        }
    }
    Component {
        id: soundsList
        SoundsView {
            objectName: "soundsList"
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
        function onPushRequested(url, properties) { stack.push(url, properties); }
    }

    Connections {
        target: window.shell
        function onMessage(text) { toast.show(text); }
    }
}
