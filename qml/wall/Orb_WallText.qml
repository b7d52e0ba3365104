import QtQuick 2.0
import "../theme"

// A line under a video's picture.
Text {
    anchors.horizontalCenter: parent.horizontalCenter
    width: 200
    height: 20
    horizontalAlignment: Text.AlignHCenter
    textFormat: Text.PlainText
    elide: Text.ElideRight
    color: Orb_Theme.text
}
