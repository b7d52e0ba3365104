import QtQuick 2.0
import "../theme"
import "../widgets"

// The second display: a button that connects it, what it is busy with, and what it has to say.
Orb_BarList {
    title: "Intel Wireless Display"

    header: [
        Orb_Button {
            anchors.verticalCenter: parent.verticalCenter
            width: 90
            height: 20
            labelText: orbDisplay.activated ? "Disconnect" : "Connect"
            visible: orbDisplay.available && !orbDisplay.processing && !orbDisplay.failed

            onButtonReleased: orbDisplay.activated = !orbDisplay.activated
        },
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 24
            height: 24
            radius: 5
            color: Qt.rgba(1, 1, 1, 0.4)
            opacity: orbDisplay.processing ? 1 : 0

            Image {
                id: wheel

                anchors.centerIn: parent
                source: "qrc:/images/processing.png"
            }

            Timer {
                interval: 100
                repeat: true
                running: orbDisplay.processing

                onTriggered: wheel.rotation = wheel.rotation >= 360 ? 30 : wheel.rotation + 30
            }
        }
    ]

    Rectangle {
        width: parent.width
        height: 80
        color: Orb_Theme.veil

        Text {
            anchors.fill: parent
            text: orbDisplay.userMessage
            font.pixelSize: Orb_Theme.menuTextSize
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.Wrap
            color: Orb_Theme.text
        }
    }
}
