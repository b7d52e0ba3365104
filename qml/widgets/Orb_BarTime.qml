import QtQuick 2.0
import "../theme"
import "../lib.js" as Lib

// A time of the control bar.
Item {
    property int time: 0 // milliseconds
    property string name: "" // what the time is of

    signal pressed()

    width: 60
    height: Orb_Theme.barHeight

    Accessible.role: Accessible.StaticText
    Accessible.name: name + " " + text.text

    Text {
        id: text

        anchors.centerIn: parent
        text: Lib.formatTime(time)
        font.pixelSize: Orb_Theme.barTextSize
        font.bold: true
        color: Orb_Theme.text
    }

    Orb_MouseArea {
        anchors.fill: parent

        onPressed: parent.pressed()
    }
}
