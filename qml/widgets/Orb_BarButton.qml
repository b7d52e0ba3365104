import QtQuick 2.0
import "../theme"

// A button of the control bar: an image or a word, and a line where a group ends.
Item {
    id: orb_barButton

    property alias image: image.source
    property alias imageOffset: image.anchors.horizontalCenterOffset
    property alias text: text.text
    property alias separator: separator.visible
    property bool shown: true // what is not shown leaves no gap
    property int shownWidth: 50
    property string name: text.text // for who cannot see the image

    signal pressed()
    signal clicked()

    width: shown ? shownWidth : 0
    height: shown ? Orb_Theme.barHeight : 0
    visible: shown

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.onPressAction: {
        pressed()
        clicked()
    }

    Image {
        id: image

        anchors.centerIn: parent
    }

    Text {
        id: text

        anchors.centerIn: parent
        font.pixelSize: Orb_Theme.menuTextSize
        font.bold: true
        color: Orb_Theme.text
    }

    Orb_BarSeparator {
        id: separator

        anchors.right: parent.right
    }

    Orb_MouseArea {
        anchors.fill: parent

        onPressed: orb_barButton.pressed()
        onClicked: orb_barButton.clicked()
    }
}
