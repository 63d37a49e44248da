// The loop editor screen: the loop's instrument tiles under its own bar (the
// title opens the name-and-folder panel, the right button shares), the
// bottom panel with tempo, pause and trash/OK, and the open instrument.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Quillo.Kit
import Quillo.Lists
import Quillo.LoopEditor

StackScreen {
    id: view

    property string loopName
    readonly property OneLoopVC controller: vc
    // Panels that other screen areas provide; absent until they are linked in.
    readonly property url soundPanelUrl: "qrc:/qt/qml/Quillo/SoundEditor/SoundPanel.qml"
    readonly property url exportUrl: "qrc:/qt/qml/Quillo/Export/ExportView.qml"

    title: vc.title
    leftBarButton: vc.leftBarButton
    // The editor draws its own bar: it carries a share button and a title that reacts to taps.
    navigationBarHidden: true
    Accessible.name: qsTr("Loop editor")

    function exists(url) {
        const c = Qt.createComponent(url, Component.PreferSynchronous);
        const ok = c.status === Component.Ready;
        c.destroy();
        return ok;
    }

    OneLoopVC {
        id: vc
        loopName: view.loopName
        onCloseRequested: if (view.StackView.view) view.StackView.view.pop()
        onExportRequested: (kind, name, borderColor) => {
            if (!view.exists(view.exportUrl) || !view.StackView.view) {
                console.log("no export screen in this build");
                vc.removeExportVC();
                return;
            }
            view.StackView.view.push(view.exportUrl, { kind: kind, name: name });
        }
    }
    Component.onCompleted: vc.soundPanelAvailable = exists(soundPanelUrl)
    StackView.onActivated: vc.removeExportVC()

    Shortcut { sequence: "Space"; enabled: view.StackView.status === StackView.Active && !vc.soundPanelOpen; onActivated: vc.pausePressed() }
    Shortcut { sequence: "Delete"; enabled: view.StackView.status === StackView.Active && !vc.soundPanelOpen; onActivated: vc.trashOkPressed() }
    Shortcut { sequence: "M"; enabled: view.StackView.status === StackView.Active && !vc.soundPanelOpen; onActivated: vc.doubleTouch() }
    Shortcut {
        sequence: "Escape"
        enabled: view.StackView.status === StackView.Active && !vc.soundPanelOpen
        onActivated: {
            if (vc.nameFolderPanelOpen) vc.closeNameFolderPanel();
            else if (vc.instrumentView) vc.removeInstrView();
            else if (vc.choiceButtonsShown) vc.hideAndThenDeleteAllTypesOfNewInstrButtons();
            else vc.menuButtonTapped();
        }
    }

    Rectangle {
        anchors.fill: parent
        color: vc.instrumentView ? vc.panelColor : Colorer.backgColor
    }

    // Right click (and a two-finger tap on touch screens) cycles the tiles' display.
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: vc.doubleTouch()
    }
    MultiPointTouchArea {
        anchors.fill: parent
        mouseEnabled: false
        minimumTouchPoints: 2
        maximumTouchPoints: 2
        onPressed: vc.doubleTouch()
    }

    // ---- Tiles
    Item {
        id: grid
        objectName: "tileGrid"
        anchors.fill: parent
        visible: !vc.instrumentView
        readonly property int revision: Framr.revision

        Repeater {
            model: vc.tiles
            delegate: LoopTileItem {
                required property LoopTile modelData
                required property int index
                objectName: "tile" + index
                tile: modelData
                frame: grid.revision >= 0 && vc.tilesAboveNav !== undefined ? vc.tileFrame(modelData.cell) : Qt.rect(0, 0, 0, 0)
                deleting: vc.deleting
                displayMode: vc.displayMode
                onTapped: vc.instrPressed(index)
            }
        }

        // The add tile, and the two ways to add that slide out of it.
        ImageButton {
            id: addTile
            objectName: "addTile"
            readonly property rect cell: grid.revision >= 0 && vc.tilesAboveNav !== undefined ? vc.tileFrame(Math.max(vc.addTileCell, 0)) : Qt.rect(0, 0, 0, 0)
            x: cell.x
            y: cell.y
            width: cell.width
            height: cell.height
            iconSize: Math.min(width, height) * 0.45
            image: "addButton"
            color: Colorer.mainColor
            visible: vc.addTileCell >= 0 && scale > 0.01
            scale: vc.addTileShown ? 1 : 0
            Behavior on scale { NumberAnimation { duration: Animator.choiceButtonTime * 1000 } }
            Behavior on x { NumberAnimation { duration: Animator.moveTime * 1000; easing.type: Easing.InOutQuad } }
            Behavior on y { NumberAnimation { duration: Animator.moveTime * 1000; easing.type: Easing.InOutQuad } }
            Accessible.name: qsTr("Add instrument")
            onClicked: vc.newInstrumentPressed()
        }

        Repeater {
            model: 2
            delegate: ImageButton {
                required property int index
                objectName: index === 0 ? "addFromListButton" : "addFromMicButton"
                readonly property rect spot: grid.revision >= 0 && vc.addTileCell >= -1 ? vc.choiceButtonFrame(index) : Qt.rect(0, 0, 0, 0)
                x: vc.choiceButtonsShown ? spot.x : addTile.x + addTile.width / 2 - width / 2
                y: spot.y
                width: spot.width
                height: spot.height
                image: vc.imageNameForTypeOfNewInstrButton(index)
                color: Colorer.mainColor
                scale: vc.choiceButtonsShown ? 1 : 0
                visible: scale > 0.01
                Behavior on x { NumberAnimation { duration: Animator.choiceButtonTime * 1000 } }
                Behavior on scale { NumberAnimation { duration: Animator.choiceButtonTime * 1000 } }
                onClicked: vc.typeOfNewInstrButtonPressed(index)
            }
        }
    }

    // ---- The editor's bar
    Rectangle {
        id: bar
        objectName: "loopEditorBar"
        width: parent.width
        height: Framr.navBarHei
        color: Colorer.barColor
        visible: !vc.navigationBarHidden

        Text {
            id: titleText
            anchors.centerIn: parent
            width: parent.width - 2 * 64
            horizontalAlignment: Text.AlignHCenter
            text: vc.title
            elide: Text.ElideRight
            font.pixelSize: 19
            font.bold: true
            color: Colorer.backgColor
            Accessible.role: Accessible.TitleBar
        }
        TapHandler {
            objectName: "titleTap"
            onTapped: vc.navBarTapped()
        }
        BarButton {
            objectName: "leftBarButton"
            anchors.left: parent.left
            anchors.leftMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            image: vc.leftBarButton
            color: Colorer.backgColor
            accessibleName: vc.backBtnArrow ? qsTr("Back") : qsTr("Menu")
            onClicked: vc.menuButtonTapped()
        }
        BarButton {
            objectName: "shareButton"
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            image: "shareButton"
            color: Colorer.backgColor
            onClicked: vc.shareButtonTapped()
        }
    }

    // ---- The open instrument
    Repeater {
        objectName: "instrumentPanels"
        model: vc.instrumentView ? [vc.instrumentView] : []
        delegate: InstrumentPanel {
            required property InstrumentView modelData
            objectName: "instrumentPanel"
            panel: modelData
            x: 0
            y: 0
            width: view.width
            height: Framr.ffBottomPanel.y
        }
    }

    // ---- Bottom panel: tempo, pause, trash/OK
    Rectangle {
        id: bottom
        objectName: "bottomPanel"
        x: Framr.ffBottomPanel.x
        y: Framr.ffBottomPanel.y
        width: Framr.ffBottomPanel.width
        height: Framr.ffBottomPanel.height
        color: vc.panelColor
        z: vc.bpmView.fullscr ? 10 : 1

        Binding { target: vc.bpmView; property: "initialFrame"; value: Framr.ffBpmButton }
        Binding { target: vc.bpmView; property: "enlargedFrame"; value: Framr.ffBPMfullScrn }
        Binding { target: vc.bpmView; property: "color"; value: vc.panelColor }
        LAAdjustViewItem {
            objectName: "bpmView"
            adjuster: vc.bpmView
        }
        ImageButton {
            objectName: "pauseButton"
            x: Framr.ffPauseButton.x
            y: Framr.ffPauseButton.y
            width: Framr.ffPauseButton.width
            height: Framr.ffPauseButton.height
            iconSize: width * 0.6
            image: vc.pauseImage
            color: vc.instrumentView ? Colorer.backgColor : Colorer.mainColor
            onClicked: vc.pausePressed()
        }
        ImageButton {
            objectName: "trashButton"
            x: Framr.ffOkButton.x
            y: Framr.ffOkButton.y
            width: Framr.ffOkButton.width
            height: Framr.ffOkButton.height
            iconSize: width * 0.6
            image: vc.trashImage
            color: vc.trashTint
            onClicked: vc.trashOkPressed()
        }
    }

    // ---- Panels from other screen areas, over a backdrop
    Rectangle {
        anchors.fill: parent
        visible: soundPanel.active
        color: Colorer.backgColor
        z: 20
    }
    // The sound panel grows out of the open instrument's photo spot (the
    // last tile's for a new recording).
    Loader {
        id: soundPanel
        objectName: "soundPanelLoader"
        anchors.fill: parent
        z: 21
        active: vc.soundPanelOpen && vc.soundPanelAvailable
        onActiveChanged: if (active) {
            const spot = vc.tileFrame(Math.max(0, vc.instrumentCount - 1));
            setSource(view.soundPanelUrl, { soundName: vc.soundPanelSoundName,
                                            startFrame: Qt.rect(spot.x, spot.y, spot.height, spot.height) });
        }
    }
    Connections {
        target: soundPanel.item
        ignoreUnknownSignals: true
        function onFinished(result, soundName) {
            if (result === "created" || result === "edited")
                vc.soundWasAddedOrEdited(soundName);
            else if (result === "cancelled")
                vc.soundRecordingWasCancelled();
        }
        function onClosed() { vc.removeSoundView(); }
    }

    Repeater {
        objectName: "namePanels"
        model: vc.loopEditV ? [vc.loopEditV] : []
        delegate: LoopOrFolderEditViewItem {
            required property LoopOrFolderEditView modelData
            editView: modelData
            z: 30
            Component.onCompleted: modelData.showFrom(Qt.rect(titleText.x, titleText.y, titleText.width, titleText.height))
        }
    }
}
