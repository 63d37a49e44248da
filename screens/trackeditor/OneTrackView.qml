pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.Lists
import Quillo.LoopEditor
import Quillo.SoundEditor
import Quillo.TrackEditor

// The track editor screen: the row heads on the left, the scrolling area of
// squares on the right, the bottom panel (tempo, play/pause, trash/OK) and,
// while a row is open, the row view above the panel.
StackScreen {
    id: view

    property string trackName
    readonly property OneTrackVC controller: vc
    // The loop editor pushed from a row, until it comes back.
    property OneLoopView loopEditor: null
    // The colour chooser open over everything, or none.
    property SoundColorView colorChooserView: null
    // On top of the stack, or shown on its own.
    readonly property bool active: view.StackView.view === null || view.StackView.status === StackView.Active

    title: vc.title
    leftBarButton: vc.leftBarButton
    navigationBarHidden: vc.navigationBarHidden
    Accessible.name: view.title

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

    Shortcut { sequence: "Space"; enabled: view.active; onActivated: vc.pausePressed() }
    Shortcut { sequence: "Delete"; enabled: view.active; onActivated: vc.trashOkPressed() }
    Shortcut { sequence: "M"; enabled: view.active; onActivated: vc.doubleTouch() }
    Shortcut {
        sequence: "Escape"
        enabled: view.active
        onActivated: if (!vc.escapePressed()) vc.menuButtonTapped()
    }

    OneTrackVC {
        id: vc
        trackName: view.trackName
        onCloseRequested: {
            const stack = view.StackView.view
            if (stack && stack.depth > 1) stack.pop()
        }
        onOpenLoopRequested: (loopName) => {
            view.loopEditor = view.openInStack("qrc:/qt/qml/Quillo/LoopEditor/OneLoopView.qml", { loopName: loopName }) as OneLoopView
        }
        onExportRequested: (kind, name) => {
            view.openInStack("qrc:/qt/qml/Quillo/Export/ExportView.qml", { kind: kind, name: name })
        }
        // The row view's panel comes and goes with it; it is handed its row
        // view once, so it never reads a closed one.
        onTrackloopViewChanged: {
            if (vc.trackloopView)
                rowPanel.setSource(Qt.resolvedUrl("TrackLoopPanel.qml"), { rowView: vc.trackloopView })
            else
                rowPanel.source = ""
        }
    }

    // Pushes another screen's view when its module is linked; says so otherwise.
    function openInStack(url: string, properties: var) : Item {
        const component = Qt.createComponent(url)
        const stack = view.StackView.view
        if (component.status !== Component.Ready || !stack) {
            console.log("Not available:", url)
            return null
        }
        return stack.push(component, properties)
    }

    Rectangle { anchors.fill: parent; color: "white" }

    // A two-finger tap anywhere over the rows (or a right click, or the M
    // key) slides the heads out or in.
    TwoFingerTapArea {
        objectName: "twoFingerTap"
        anchors.fill: parent
        onTapped: vc.doubleTouch()

        TrackSquaresArea {
            objectName: "squaresArea"
            controller: vc
            z: vc.leftVOnscreen ? 1 : 2
        }

        TrackRowHeads {
            objectName: "rowHeads"
            controller: vc
            z: vc.leftVOnscreen ? 2 : 1
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: vc.doubleTouch()
    }

    Loader {
        id: rowPanel
        objectName: "trackLoopPanel"
        x: 0
        y: 0
        width: view.width
        height: view.height - Framr.bottomPanelHei
        z: 5
    }
    Connections {
        target: vc.trackloopView
        function onSoundColorVChanged() {
            const chooser = vc.trackloopView.soundColorV
            if (chooser === null || chooser === view.colorChooserView) return
            view.colorChooserView = chooser
            colorChooser.setSource("qrc:/qt/qml/Quillo/SoundEditor/SoundColorViewItem.qml", { view: chooser })
        }
    }
    // The colour chooser over the whole screen; it goes after a pick or Escape.
    Loader {
        id: colorChooser
        z: 20
    }
    Connections {
        target: view.colorChooserView
        function onRemoveSoundColorView() {
            colorChooser.source = ""
            view.colorChooserView = null
        }
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
        z: vc.bpmView.fullscr ? 11 : 6

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
        // The tempo: in the main colour, or the open row's colour.
        Binding { target: vc.bpmView; property: "initialFrame"; value: Framr.ffBpmButton }
        Binding { target: vc.bpmView; property: "enlargedFrame"; value: Framr.ffBPMfullScrn }
        Binding { target: vc.bpmView; property: "color"; value: vc.trackloopView ? vc.panelColor : Colorer.mainColor }
        LAAdjustViewItem {
            objectName: "bpmView"
            adjuster: vc.bpmView
        }
    }

    // The number of squares, enlarged over everything while it is open. Its
    // adjuster lives as long as the screen, so this item never outlives it.
    LAAdjustViewItem {
        objectName: "squaresNumView"
        adjuster: vc.sqNumView
        visible: vc.squaresNumOpen
        z: 10
    }
}
