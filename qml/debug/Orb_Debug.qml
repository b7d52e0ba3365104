import QtQuick 2.0
import "../theme"

// What a developer watches while the scene runs, over all of it. It takes no events.
Item {
    id: orb_debug

    Text {
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.top: parent.top
        anchors.topMargin: 10
        color: Orb_Theme.text
        font.pixelSize: 18
        style: Text.Outline
        styleColor: Orb_Theme.veil
        text: orbDisplay.logMessage
    }

    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 30
        anchors.top: parent.top
        anchors.topMargin: 30
        width: 150
        height: 30
        color: Orb_Theme.veil

        Text {
            anchors.centerIn: parent
            color: Orb_Theme.text
            font.pixelSize: 20
            text: Math.round(orbDebug.fps) + " qml fps"
        }
    }

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 50
        color: Orb_Theme.text
        font.pixelSize: 18
        style: Text.Outline
        styleColor: Orb_Theme.veil
        text: " yaw = " + orbGlobalObject.yaw.toFixed(3)
              + " pitch = " + orbGlobalObject.pitch.toFixed(3)
              + " roll = " + orbGlobalObject.roll.toFixed(3)
    }
}
