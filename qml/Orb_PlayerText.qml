import QtQuick 2.0
import "theme"

// White text on a rounded veil.
Text {
    color: Orb_Theme.text
    font.pixelSize: 20

    Rectangle {
        z: -1
        anchors.fill: parent
        anchors.margins: -10
        radius: 10
        color: Orb_Theme.veil
    }
}
