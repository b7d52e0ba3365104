import QtQuick 2.0
import "../theme"

// The line between two groups of the control bar.
Rectangle {
    anchors.verticalCenter: parent.verticalCenter
    width: 1
    height: parent.height - 4
    color: Orb_Theme.separator
}
