// The settings screen, opened from the side menu: the artist name for new
// items, the mail account (the password goes to the keyring) and the audio
// devices with the buffer size.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Quillo.Kit
import Quillo.Export

Rectangle {
    id: view

    // For the window's stack and bar.
    property string title: qsTr("Settings")
    property string leftBarButton: "backarrow"
    property string typeOfItems
    property bool navigationBarHidden: false
    signal leftBarButtonTapped()
    signal menuRequested()
    readonly property alias controller: vc

    color: Colorer.backgColor
    focus: true
    Keys.onEscapePressed: if (StackView.view) StackView.view.pop()

    SettingsVC { id: vc }

    component Heading: Text {
        color: Colorer.mainColor
        font.bold: true
        font.pixelSize: 18
        Layout.topMargin: 8
    }
    component Field: TextField {
        Layout.fillWidth: true
        implicitHeight: 40
        font.pixelSize: 16
        color: Colorer.mainColor
        placeholderTextColor: Qt.rgba(Colorer.mainColor.r, Colorer.mainColor.g, Colorer.mainColor.b, 0.5)
        Accessible.name: placeholderText
        background: Rectangle { radius: 8; color: "transparent"; border.color: Colorer.mainColor; border.width: parent.activeFocus ? 2 : 1 }
    }
    component Choice: ComboBox {
        id: choice
        Layout.fillWidth: true
        implicitHeight: 40
        font.pixelSize: 16
        contentItem: Text {
            leftPadding: 10
            rightPadding: choice.indicator.width + 10
            text: choice.displayText
            font: choice.font
            color: Colorer.mainColor
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        indicator: TintedIcon {
            x: choice.width - width - 12
            y: (choice.height - height) / 2
            width: 14
            height: 14
            rotation: -90  // the back arrow, pointing down
            name: "backarrow"
            color: Colorer.mainColor
        }
        background: Rectangle {
            radius: 8
            color: "transparent"
            border.color: Colorer.mainColor
            border.width: choice.activeFocus ? 2 : 1
        }
    }

    ScrollView {
        anchors.fill: parent
        anchors.margins: 16
        contentWidth: availableWidth

        ColumnLayout {
            width: parent.width
            spacing: 8

            Heading { text: qsTr("Artist") }
            Field { placeholderText: qsTr("Artist name"); text: vc.artistName; onTextEdited: vc.artistName = text }

            Heading { text: qsTr("Mail") }
            Field { placeholderText: qsTr("SMTP server"); text: vc.mailServer; onTextEdited: vc.mailServer = text }
            RowLayout {
                Layout.fillWidth: true
                Field {
                    placeholderText: qsTr("Port")
                    text: String(vc.mailPort)
                    validator: IntValidator { bottom: 1; top: 65535 }
                    onTextEdited: vc.mailPort = parseInt(text) || 0
                    Layout.preferredWidth: 80
                    Layout.fillWidth: false
                }
                SegmentedRow {
                    Layout.fillWidth: true
                    Layout.preferredHeight: 36
                    titles: ["TLS", "STARTTLS", qsTr("None")]
                    currentIndex: vc.mailSecurity
                    accessibleName: qsTr("Security")
                    onActivated: (index) => vc.mailSecurity = index
                }
            }
            Field { placeholderText: qsTr("User name"); text: vc.mailUser; onTextEdited: vc.mailUser = text }
            Field { placeholderText: qsTr("Sender address (the user name when empty)"); text: vc.mailFrom; onTextEdited: vc.mailFrom = text }
            Field { placeholderText: qsTr("Password (kept in the keyring)"); echoMode: TextInput.Password; text: vc.mailPassword; onTextEdited: vc.mailPassword = text }

            Heading { text: qsTr("Audio") }
            Text { text: qsTr("Output"); color: Colorer.mainColor }
            Choice {
                model: vc.outputDevices
                currentIndex: Math.max(0, vc.indexOfOutputDevice)
                onActivated: (index) => vc.outputDevice = vc.outputDevices[index]
                Accessible.name: qsTr("Output device")
            }
            Text { text: qsTr("Input"); color: Colorer.mainColor }
            Choice {
                model: vc.inputDevices
                currentIndex: Math.max(0, vc.indexOfInputDevice)
                onActivated: (index) => vc.inputDevice = vc.inputDevices[index]
                Accessible.name: qsTr("Input device")
            }
            Text { text: qsTr("Buffer (frames)"); color: Colorer.mainColor }
            SegmentedRow {
                readonly property var sizes: [128, 256, 512, 1024]
                Layout.fillWidth: true
                Layout.preferredHeight: 36
                titles: ["128", "256", "512", "1024"]
                currentIndex: Math.max(0, sizes.indexOf(vc.bufferFrames))
                accessibleName: qsTr("Buffer size")
                onActivated: (index) => vc.bufferFrames = sizes[index]
            }
            Text {
                text: vc.audioNow
                color: Colorer.mainColor
                opacity: 0.8
                font.pixelSize: 13
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }

            Text {
                visible: text !== ""
                text: vc.problem !== "" ? vc.problem : vc.status
                color: Colorer.mainColor
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
            ImageButton {
                Layout.alignment: Qt.AlignHCenter
                Layout.preferredWidth: 64
                Layout.preferredHeight: 64
                image: "okButton"
                accessibleName: qsTr("Save")
                onClicked: vc.save()
            }
        }
    }
}
