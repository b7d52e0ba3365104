import QtQuick 2.1
import QtQuick.Controls 1.1
import QtQuick.Dialogs 1.1
import "../theme"

FocusScope {
    id: popupOpenFile

    signal close()

    function openFile() {
        var source = orbGlobalObject.typedSource(textInput.text)
        if (source !== "")
            orbGlobalObject.openFile(source, false)
        close()
    }

    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: prompt.text

    Keys.onPressed: {
        event.accepted = true
        if (event.key === Qt.Key_Escape)
            close()
    }

    SystemPalette {
        id: palette
    }

    Rectangle {
        anchors.centerIn: parent
        width: 600
        height: 100
        radius: 10
        color: palette.window

        Label {
            id: prompt

            x: 10
            y: 10
            text: qsTr("Open file/stream :")
        }

        Rectangle {
            x: 10
            y: 30
            width: parent.width - 20
            height: 25
            radius: 5
            border.color: Orb_Theme.fieldBorder
            color: "white"

            TextInput {
                id: textInput

                anchors.fill: parent
                anchors.margins: 5
                focus: true
                clip: true
                selectByMouse: true
                activeFocusOnTab: true

                Accessible.role: Accessible.EditableText
                Accessible.name: prompt.text

                onAccepted: openFile()
            }
        }

        Row {
            x: 10
            y: 70
            spacing: 10

            Button {
                text: qsTr("Browse...")

                onClicked: fileDialog.open()
            }
        }

        Row {
            anchors.right: parent.right
            anchors.rightMargin: 10
            y: 70
            spacing: 10

            Button {
                text: qsTr("Open")
                isDefault: true
                enabled: textInput.text.length > 0

                onClicked: openFile()
            }

            Button {
                text: qsTr("Cancel")

                onClicked: close()
            }
        }
    }

    FileDialog {
        id: fileDialog

        onAccepted: textInput.text = fileUrls[0]
    }
}
