import QtQuick 2.0
import "../theme"
import "../widgets"

// One video backend: its name with a mark if it is the chosen one, and what it is good for.
Rectangle {
    id: orb_pluginItem

    property alias label: label.text
    property alias description: description.text
    property bool chosen: false

    signal pressed()

    width: parent.width
    height: 100
    color: Orb_Theme.veil

    Accessible.role: Accessible.RadioButton
    Accessible.name: label.text
    Accessible.description: description.text
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.onPressAction: pressed()

    Rectangle {
        id: mark

        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 10
        width: 16
        height: 16
        radius: 5
        color: "grey"

        Image {
            anchors.centerIn: parent
            source: "qrc:/images/tick_16.png"
            opacity: chosen ? 1 : 0
        }
    }

    Text {
        id: label

        anchors.right: mark.left
        anchors.rightMargin: 5
        anchors.verticalCenter: mark.verticalCenter
        font.pixelSize: Orb_Theme.menuTextSize
        font.bold: true
        horizontalAlignment: Text.AlignRight
        color: Orb_Theme.text
    }

    Text {
        id: description

        anchors.top: mark.bottom
        anchors.topMargin: 10
        anchors.right: parent.right
        anchors.rightMargin: 10
        width: parent.width - 10
        font.pixelSize: Orb_Theme.barTextSize
        font.bold: true
        horizontalAlignment: Text.AlignRight
        wrapMode: Text.Wrap
        color: Orb_Theme.text
    }

    Orb_MouseArea {
        y: 10
        width: parent.width
        height: 16

        onPressed: orb_pluginItem.pressed()
    }
}
