import QtQuick 2.0
import "../theme"

// A button of the control bar: an image, and a line at its right end where a group ends.
Item {
    id: orb_barButton

    property alias image: image.source
    property alias separator: separator.visible

    signal pressed()
    signal clicked()

    width: 50
    height: Orb_Theme.barHeight
    clip: true

    Image {
        id: image

        anchors.centerIn: parent
    }

    Rectangle {
        id: separator

        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: 1
        height: parent.height - 4
        color: Orb_Theme.separator
    }

    Orb_MouseArea {
        anchors.fill: parent

        onPressed: orb_barButton.pressed()
        onClicked: orb_barButton.clicked()
    }
}
