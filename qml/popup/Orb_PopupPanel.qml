import QtQuick 2.0
import QtQuick.Controls 1.1
import "../theme"

// A panel with a title, in the colours of the desktop, centred in the scene. Its children stand inside
// its margins, under the title.
FocusScope {
    id: orb_popupPanel

    property string title: ""
    property alias boxWidth: box.width
    property alias boxHeight: box.height
    property alias titleFont: titleLabel.font
    property bool closesByKey: true
    default property alias content: content.data

    signal close()

    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    Keys.onPressed: {
        if (!closesByKey)
            return
        event.accepted = true
        if (event.key === Qt.Key_Escape || event.key === Qt.Key_Return
                || event.key === Qt.Key_Enter)
            close()
    }

    SystemPalette {
        id: palette
    }

    Rectangle {
        id: box

        anchors.centerIn: parent
        width: Math.min(600, orb_popupPanel.width)
        height: Math.min(400, orb_popupPanel.height)
        radius: Orb_Theme.panelRadius
        color: palette.window

        Item {
            id: content

            anchors.fill: parent
            anchors.margins: Orb_Theme.panelMargin

            Label {
                id: titleLabel

                width: parent.width
                height: 30
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
                text: orb_popupPanel.title
                font.bold: true
            }
        }
    }
}
