import QtQuick 2.0
import "theme"

// A symbol or a time in the middle of the picture, for a moment.
Item {
    id: orb_playerImage

    function onShowPlayerImage(playerImage) {
        imageAnimation.stop()
        image.scale = 0
        image.opacity = 1
        image.source = playerImage
        imageAnimation.restart()
    }

    function onShowPlayerText(playerText) {
        textAnimation.stop()
        label.opacity = 1
        label.text = playerText
        textAnimation.restart()
    }

    anchors.fill: parent

    Component.onCompleted: orbLeap.setPlayerImage(orb_playerImage)

    Image {
        id: image

        anchors.centerIn: parent
        opacity: 0
    }

    Orb_PlayerText {
        id: label

        anchors.centerIn: parent
        opacity: 0
    }

    // The same at the lens centres of a stereo screen.
    Repeater {
        model: [orbOculus.lensCenterLeft, orbOculus.lensCenterRight]

        Item {
            x: modelData.x * orb_playerImage.width
            y: modelData.y * orb_playerImage.height
            visible: false

            Image {
                anchors.centerIn: parent
                source: image.source
                scale: image.scale
                opacity: image.opacity
            }

            Orb_PlayerText {
                anchors.centerIn: parent
                text: label.text
                opacity: label.opacity
            }
        }
    }

    SequentialAnimation {
        id: imageAnimation

        NumberAnimation { target: image; property: "scale"; to: 1; duration: 500 }
        NumberAnimation { target: image; property: "opacity"; to: 0; duration: 200 }
    }

    SequentialAnimation {
        id: textAnimation

        PauseAnimation { duration: 500 }
        NumberAnimation { target: label; property: "opacity"; to: 0; duration: 1000 }
    }
}
