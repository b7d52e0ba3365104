import QtQuick 2.1
import QtQuick.Controls 1.1
import "../theme"

// A label and, beside it, a text to type.
FocusScope {
    id: orb_inputRow

    property alias label: label.text
    property alias text: input.text

    signal accepted()

    width: parent.width
    height: 30

    Label {
        id: label

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width / 2
    }

    Rectangle {
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width / 2
        height: 25
        radius: 5
        border.color: Orb_Theme.fieldBorder
        color: "white"

        TextInput {
            id: input

            anchors.fill: parent
            anchors.margins: 5
            focus: true
            clip: true
            selectByMouse: true
            activeFocusOnTab: true

            Accessible.role: Accessible.EditableText
            Accessible.name: label.text

            onAccepted: orb_inputRow.accepted()
        }
    }
}
