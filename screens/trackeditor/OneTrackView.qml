import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.Lists
import Quillo.TrackEditor

// The track editor screen: the row heads on the left, the scrolling area of
// squares on the right, the bottom panel (tempo, play/pause, trash/OK) and,
// while a row is open, the row view above the panel.
StackScreen {
    id: view

    property string trackName
    readonly property OneTrackVC controller: vc

    title: vc.title
    leftBarButton: vc.leftBarButton
    navigationBarHidden: vc.navigationBarHidden
    Accessible.name: title
    focus: true

    onLeftBarButtonTapped: vc.menuButtonTapped()
    StackView.onRemoved: vc.menuButtonTapped()
    // Back from the loop editor opened on a row: the row takes the loop it
    // closed with (a user copy made there replaces the built-in loop).
    StackView.onActivated: {
        if (view.loopEditor !== null) {
            vc.loopEditorClosed(view.loopEditor.loopName)
            view.loopEditor = null
        }
    }
    property Item loopEditor: null

    Keys.onSpacePressed: vc.pausePressed()
    Keys.onDeletePressed: vc.trashOkPressed()
    Keys.onEscapePressed: {
        if (vc.trackloopView) vc.trashOkPressed()
        else if (vc.deleting) vc.trashOkPressed()
        else vc.menuButtonTapped()
    }
    Keys.onPressed: (event) => { if (event.key === Qt.Key_M) { vc.doubleTouch(); event.accepted = true } }

    OneTrackVC {
        id: vc
        trackName: view.trackName
        onCloseRequested: if (view.StackView.view && view.StackView.view.depth > 1) view.StackView.view.pop()
        onOpenLoopRequested: (loopName) => {
            view.loopEditor = view.openInStack("qrc:/qt/qml/Quillo/LoopEditor/OneLoopView.qml", { loopName: loopName })
        }
        onExportRequested: (kind, name, borderColor) => {
            view.openInStack("qrc:/qt/qml/Quillo/Export/ExportView.qml", { kind: kind, name: name })
        }
    }

    // Pushes another screen's view when its module is linked; says so otherwise.
    function openInStack(url, properties) : Item {
        const component = Qt.createComponent(url)
        if (component.status !== Component.Ready || !view.StackView.view) {
            console.log("Not available:", url)
            return null
        }
        return view.StackView.view.push(component, properties)
    }

    Rectangle { anchors.fill: parent; color: "white" }

    TrackSquaresArea {
        id: area
        objectName: "squaresArea"
        controller: vc
        z: vc.leftVOnscreen ? 1 : 2
    }

    TrackRowHeads {
        objectName: "rowHeads"
        controller: vc
        z: vc.leftVOnscreen ? 2 : 1
    }

    // Right click (or the M key): the heads slide out or in.
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: vc.doubleTouch()
    }

    TrackLoopPanel {
        objectName: "trackLoopPanel"
        visible: vc.trackloopView !== null
        rowView: vc.trackloopView
        x: 0
        y: 0
        width: parent.width
        height: view.height - Framr.bottomPanelHei
        z: 5
    }

    // The bottom panel and the strip under it.
    // The panel sits at the bottom of the screen whether the bar shows or not;
    // the strip below it (300 points) keeps its colour during moves.
    Rectangle {
        id: panel
        objectName: "bottomPanel"
        x: 0
        y: view.height - Framr.bottomPanelHei
        width: view.width
        height: Framr.bottomPanelHei + 300
        color: vc.panelColor
        z: 6

        ImageButton {
            objectName: "pauseButton"
            x: Framr.ffPauseButton.x; y: Framr.ffPauseButton.y
            width: Framr.ffPauseButton.width; height: Framr.ffPauseButton.height
            image: vc.pauseImage
            color: vc.trackloopView ? Colorer.backgColor : Colorer.mainColor
            onClicked: vc.pausePressed()
        }
        ImageButton {
            objectName: "trashOkButton"
            x: Framr.ffOkButton.x; y: Framr.ffOkButton.y
            width: Framr.ffOkButton.width; height: Framr.ffOkButton.height
            image: vc.trashImage
            color: vc.trashTint
            onClicked: vc.trashOkPressed()
        }
        LAAdjustViewItem {
            objectName: "bpmView"
            adjuster: vc.bpmView
        }
    }

    // The number of squares, enlarged over everything while it is open.
    Loader {
        active: vc.sqNumView !== null
        z: 10
        sourceComponent: LAAdjustViewItem { objectName: "squaresNumView"; adjuster: vc.sqNumView }
    }
}
