// Quillo's mail composer: recipient, subject, body and the attachments with
// their sizes; send, save as a draft, or cancel. The password is asked for
// here only when the keyring has none.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Quillo.Kit
import Quillo.Export

Rectangle {
    id: view

    required property MailComposer composer
    color: Colorer.backgColor
    focus: true
    Keys.onEscapePressed: composer.cancel()

    component Field: TextField {
        Layout.fillWidth: true
        implicitHeight: 40
        font.pixelSize: 16
        color: Colorer.mainColor
        placeholderTextColor: Qt.rgba(Colorer.mainColor.r, Colorer.mainColor.g, Colorer.mainColor.b, 0.5)
        background: Rectangle {
            radius: 8
            color: "transparent"
            border.color: Colorer.mainColor
            border.width: parent.activeFocus ? 2 : 1
        }
    }
    component Action: Button {
        id: action
        Layout.fillWidth: true
        implicitHeight: 44
        contentItem: Text {
            text: action.text
            color: Colorer.backgColor
            font.bold: true
            font.pixelSize: 16
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle { radius: height / 2; color: action.enabled ? Colorer.mainColor : Colorer.darkGreyBlueColor }
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        anchors.topMargin: Framr.navBarHei * 0.5
        spacing: 10

        Text {
            text: qsTr("New mail")
            color: Colorer.mainColor
            font.bold: true
            font.pixelSize: 22
        }
        Text {
            text: qsTr("From: %1").arg(view.composer.sender)
            color: Colorer.mainColor
            opacity: 0.8
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
        Field {
            id: to
            placeholderText: qsTr("To")
            text: view.composer.to
            inputMethodHints: Qt.ImhEmailCharactersOnly
            Accessible.name: qsTr("To")
            onTextEdited: view.composer.to = text
            Component.onCompleted: forceActiveFocus()
        }
        Field {
            placeholderText: qsTr("Subject")
            text: view.composer.subject
            Accessible.name: qsTr("Subject")
            onTextEdited: view.composer.subject = text
        }
        Field {
            visible: view.composer.needsPassword
            placeholderText: qsTr("Password")
            echoMode: TextInput.Password
            Accessible.name: qsTr("Password")
            onTextEdited: view.composer.password = text
        }
        TextArea {
            Layout.fillWidth: true
            Layout.fillHeight: true
            text: view.composer.body
            color: Colorer.mainColor
            wrapMode: TextEdit.Wrap
            Accessible.name: qsTr("Message")
            onTextChanged: if (text !== view.composer.body) view.composer.body = text
            background: Rectangle { radius: 8; color: "transparent"; border.color: Colorer.mainColor; border.width: 1 }
        }
        Repeater {
            model: view.composer.attachments
            delegate: RowLayout {
                id: attachment
                required property var modelData
                Layout.fillWidth: true
                TintedIcon { name: "fileIcon"; color: Colorer.mainColor; width: 22; height: 22; Layout.preferredWidth: 22; Layout.preferredHeight: 22 }
                Text { text: attachment.modelData.fileName; color: Colorer.mainColor; elide: Text.ElideMiddle; Layout.fillWidth: true }
                Text { text: attachment.modelData.size; color: Colorer.mainColor; opacity: 0.8 }
            }
        }
        Text {
            visible: text !== ""
            text: view.composer.sending ? qsTr("Sending…") : view.composer.problem
            color: Colorer.mainColor
            Layout.fillWidth: true
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            Action { text: qsTr("Cancel"); enabled: !view.composer.sending; onClicked: view.composer.cancel() }
            Action { text: qsTr("Save draft"); enabled: !view.composer.sending; onClicked: view.composer.saveDraft() }
            Action { text: qsTr("Send"); enabled: !view.composer.sending; onClicked: view.composer.send() }
        }
    }
}
