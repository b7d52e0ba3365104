import QtQuick 2.0
import "../theme"

// One part of the program in the software log: its image and title, and under them what it says.
Item {
    id: softwareLogItem

    property alias imageSource: image.source
    property alias title: title.text
    property alias log: log.text
    property alias link: link.text

    width: parent.width
    height: tile.height + column.height + 10
    clip: true

    // The images are made for the dark bar.
    Rectangle {
        id: tile

        width: 30
        height: 30
        radius: 5
        color: Orb_Theme.iconTile

        Image {
            id: image

            anchors.centerIn: parent
        }
    }

    Text {
        id: title

        anchors.left: tile.right
        anchors.leftMargin: 10
        anchors.verticalCenter: tile.verticalCenter
        font.bold: true
        color: "black"
    }

    Column {
        id: column

        anchors.top: tile.bottom
        anchors.topMargin: 10
        width: parent.width

        Text {
            id: log

            width: parent.width
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            color: "black"
        }

        Text {
            id: link

            width: parent.width
            wrapMode: Text.Wrap
            textFormat: Text.RichText
            visible: text !== ""
            color: "black"

            onLinkActivated: root.openAddress(link)
        }
    }
}
