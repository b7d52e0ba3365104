import QtQuick 2.0
import QtQuick.Controls 1.1
import OrbixSight 1.0
import "theme"
import "wall/"

// The videos of the hosting service, over the whole scene. The root scene has none: a build that
// wants one gives it an instance that follows the states "Wall" and "Popup_Wall".
FocusScope {
    id: orb_hostingWall

    property real __away: 1 // 0 in view, 1 beyond the left edge

    width: parent.width
    height: parent.height
    anchors.left: parent.left
    anchors.leftMargin: -width * __away
    state: "Off"

    onStateChanged: {
        if (state !== "Off_popup") // which leaves it where it is
            __away = state === "On" ? 0 : 1
    }

    Behavior on __away {
        NumberAnimation { duration: Orb_Theme.slideMs }
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons

        onWheel: {} // not for the picture below
    }

    Orb_WallBar {
        id: bar

        width: parent.width
    }

    Rectangle {
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        color: Orb_Theme.veil

        Text {
            anchors.centerIn: parent
            text: qsTr("No videos")
            color: Orb_Theme.text
            visible: grid.count === 0
        }

        GridView {
            id: grid

            anchors.fill: parent
            anchors.margins: 30
            cellWidth: 220
            cellHeight: 180
            clip: true
            model: videosListModel
            delegate: Orb_WallVideo {
                width: grid.cellWidth
                height: grid.cellHeight
            }

            onCountChanged: {
                // A new list begins at its top.
                cancelFlick()
                positionViewAtBeginning()
            }
        }

        ProgressBar {
            anchors.centerIn: parent
            indeterminate: true
            visible: orbHostingManager.requestType !== OrbHostingManager.None

            Accessible.name: qsTr("Asking the service")
        }
    }

    states: [
        State {
            name: "On"
            PropertyChanges { target: orb_hostingWall; enabled: true; focus: true }
        },
        State {
            name: "Off"
            PropertyChanges { target: orb_hostingWall; enabled: false }
        },
        State {
            name: "Off_popup"
            PropertyChanges { target: orb_hostingWall; enabled: false }
        }
    ]
}
