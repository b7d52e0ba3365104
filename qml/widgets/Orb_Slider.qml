import QtQuick 2.0
import "../theme"

// Shows `progression`, which the caller keeps within 0 to 1, and says in `newProgression` what the user
// asks for.
Item {
    id: orb_slider

    property real progression: 0.0
    property real newProgression: 0.0
    property string buttonSource: "qrc:/images/button_32.png"
    property bool horizontalMode: true
    property string name: "" // for who cannot see it

    // What assistive technology asks of a slider.
    readonly property alias value: orb_slider.progression
    readonly property real minimumValue: 0
    readonly property real maximumValue: 1
    readonly property real stepSize: 0.05

    function step(by) {
        if (enabled)
            newProgression = Math.max(0, Math.min(1, progression + by))
    }

    function setFrom(mouse) {
        // The sensitive area reaches 8 beyond the bar on each side.
        var max = horizontalMode ? container.width : container.height
        var position = horizontalMode ? mouse.x - 8 : container.height - (mouse.y - 8)
        if (position < 0)
            newProgression = 0.0
        else if (position > max)
            newProgression = 1.0
        else if (max > 0)
            newProgression = position / max
    }

    Accessible.role: Accessible.Slider
    Accessible.name: name
    Accessible.onIncreaseAction: step(stepSize)
    Accessible.onDecreaseAction: step(-stepSize)

    Rectangle {
        id: container

        anchors.fill: parent
        radius: 5
        color: Qt.rgba(1, 1, 1, 1)

        Rectangle {
            id: progressBar

            anchors.left: parent.left
            anchors.bottom: parent.bottom
            width: horizontalMode ? Math.round(parent.width * progression) : parent.width
            height: horizontalMode ? parent.height : Math.round(parent.height * progression)
            radius: 5
            color: Orb_Theme.accent
        }

        Image {
            id: button

            source: buttonSource
            x: horizontalMode ? progressBar.width - width / 2 : (parent.width - width) / 2
            y: horizontalMode ? (parent.height - height) / 2
                              : parent.height - progressBar.height - height / 2
        }
    }

    Orb_MouseArea {
        anchors.centerIn: container
        width: container.width + 16
        height: container.height + 16

        onPressed: setFrom(mouse)
        onPositionChanged: setFrom(mouse)
    }
}
