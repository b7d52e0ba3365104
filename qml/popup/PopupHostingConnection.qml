import QtQuick 2.0
import QtQuick.Controls 1.1
import OrbixSight 1.0
import "../theme"
import "../wall"

// The login to the hosting service; the wall stands behind it.
FocusScope {
    id: popupHostingConnection

    // The service is asked one thing at a time; what is asked meanwhile is lost.
    readonly property bool isFree: orbHostingManager.requestType === OrbHostingManager.None

    signal close(string rootState)

    function login() {
        if (!isFree)
            return
        message.text = qsTr("Connecting...")
        orbHostingManager.requestConnection(userName.text, password.text)
    }

    function onRequestResponse(success, errorMessage) {
        message.text = success ? qsTr("Success") : errorMessage
        if (success)
            leave()
    }

    // A popup on its way out answers no more.
    function leave() {
        orbHostingManager.requestResponse.disconnect(onRequestResponse)
        close("Wall")
    }

    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: qsTr("Connection")

    Keys.onPressed: {
        event.accepted = true
        if (event.key === Qt.Key_Escape)
            leave()
    }

    Component.onCompleted: orbHostingManager.requestResponse.connect(onRequestResponse)
    Component.onDestruction: orbHostingManager.requestResponse.disconnect(onRequestResponse)

    SystemPalette {
        id: palette
    }

    Rectangle {
        anchors.centerIn: parent
        width: 400
        height: 300
        radius: Orb_Theme.panelRadius
        color: palette.window

        Column {
            anchors.fill: parent
            anchors.margins: 20

            Orb_InputRow {
                id: userName

                label: qsTr("Username")
                text: "testuser"
                focus: true

                onAccepted: login()
            }

            Orb_InputRow {
                id: password

                label: qsTr("Password")
                text: "testpass"

                onAccepted: login()
            }
        }

        Text {
            id: message

            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 50
            width: parent.width - 40
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 5
            elide: Text.ElideRight
            textFormat: Text.PlainText
            color: "red"
        }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 20
            spacing: 10

            Button {
                text: qsTr("OK")
                isDefault: true
                enabled: isFree

                onClicked: login()
            }

            Button {
                text: qsTr("Cancel")

                onClicked: leave()
            }
        }
    }
}
