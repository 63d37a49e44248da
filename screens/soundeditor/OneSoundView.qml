// The sound screen pushed by the sounds list: a white screen without the
// navigation bar that shows the sound panel and pops itself when the panel
// closes. soundName: the sound to edit, empty for a new recording.
import QtQuick
import QtQuick.Controls
import Quillo.Kit
import Quillo.Lists
import Quillo.SoundEditor

StackScreen {
    id: screen

    property string soundName: ""
    property rect startFrame: Qt.rect(Framr.scrnWid / 2 - 1, Framr.scrnHei / 2 - 1, 2, 2)

    title: soundName.length > 0 ? soundName : qsTr("New sound")
    leftBarButton: "backarrow"
    navigationBarHidden: true

    OneSoundVC {
        id: controller
        soundName: screen.soundName
        startFrame: screen.startFrame
        onPopRequested: {
            if (screen.StackView.view)
                screen.StackView.view.pop(null, StackView.Immediate)
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Colorer.backgColor
    }

    SoundPanel {
        id: panel
        objectName: "soundPanel"
        host: controller
        makesItsOwnView: false
    }

    // The properties are all set by now (the list pushes with soundName).
    Component.onCompleted: panel.soundView = controller.viewDidLoad()
}
