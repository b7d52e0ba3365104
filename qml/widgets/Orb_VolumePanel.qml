import QtQuick 2.0
import "../theme"

// The volume above its button: a panel that rises out of the bar, and a slider in it.
Item {
    id: orb_volumePanel

    property real volume: 0 // 0 silent, 1 full

    signal volumeWanted(real wanted)

    height: 150
    clip: true
    visible: state === "Shown" || panel.anchors.bottomMargin > -panel.height
    state: "Hidden"

    Rectangle {
        id: panel

        anchors.bottom: parent.bottom
        anchors.bottomMargin: -height
        width: parent.width
        height: parent.height
        color: Orb_Theme.veil

        Behavior on anchors.bottomMargin {
            NumberAnimation { duration: Orb_Theme.slideMs }
        }

        // Presses beside the slider stay here.
        MouseArea {
            anchors.fill: parent
        }

        Orb_Slider {
            id: slider

            anchors.centerIn: parent
            width: 8
            height: parent.height - 20
            name: qsTr("Volume")
            horizontalMode: false
            buttonSource: "qrc:/images/button_16.png"
            progression: orb_volumePanel.volume

            onNewProgressionChanged: orb_volumePanel.volumeWanted(newProgression)
        }
    }

    states: [
        State {
            name: "Shown"
            PropertyChanges { target: panel; anchors.bottomMargin: 0 }
        },
        State {
            name: "Hidden"
        }
    ]
}
