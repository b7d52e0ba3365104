import QtQuick 2.0
import "../widgets"

Item {
    id: popupAbout

    signal close()

    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: orbView.title()

    Keys.onPressed: {
        event.accepted = true
        if (event.key === Qt.Key_Escape || event.key === Qt.Key_Return
                || event.key === Qt.Key_Enter)
            close()
    }

    Orb_MouseArea {
        anchors.fill: parent
        cursorShape: Qt.ArrowCursor

        onPressed: popupAbout.close()
    }

    Rectangle {
        anchors.centerIn: parent
        width: 602
        height: 382
        color: "white"

        Image {
            id: background

            anchors.centerIn: parent
            source: "qrc:/images/newui/about_background.png"

            Text {
                x: 215
                y: 110
                text: orbView.title()
                color: "white"
                font.bold: true
                font.pixelSize: 14
            }

            // The home page and the page of videos; both belong to the maker's site.
            Repeater {
                model: [{ at: 135, name: qsTr("Website") }, { at: 315, name: qsTr("Videos") }]

                Orb_MouseArea {
                    x: modelData.at
                    y: 325
                    width: 150
                    height: 35

                    Accessible.role: Accessible.Link
                    Accessible.name: modelData.name
                    Accessible.onPressAction: clicked(null)

                    onClicked: root.openAddress(orbGlobalObject.getEnterpriseWebLink())
                }
            }
        }
    }
}
