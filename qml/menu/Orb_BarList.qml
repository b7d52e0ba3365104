import QtQuick 2.0
import "../theme"

// A list above the right end of the control bar: it slides in from the window's edge. Its children are
// the rows under its title. Where the window is too low for all of them, they scroll.
Rectangle {
    id: orb_barList

    property alias title: title.text
    property alias header: header.data // stands in the title's row
    readonly property alias containsMouse: listMouseArea.containsMouse
    default property alias rows: flow.data

    width: __menuWidth
    height: Math.min(flow.height + 20, root.height - Orb_Theme.barHeight)
    anchors.bottom: parent.top
    anchors.right: parent.right
    anchors.rightMargin: -width
    // Out of sight it is out of reach as well.
    visible: state === "Shown" || anchors.rightMargin > -width
    color: Orb_Theme.veil
    state: "Hidden"

    Accessible.role: Accessible.PopupMenu
    Accessible.name: title.text

    Behavior on anchors.rightMargin {
        NumberAnimation { duration: Orb_Theme.slideMs }
    }

    MouseArea {
        id: listMouseArea

        anchors.fill: parent
        hoverEnabled: true

        onWheel: {} // not for the picture below
    }

    Flickable {
        anchors.fill: parent
        contentHeight: flow.height + 20
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        clip: interactive

        Flow {
            id: flow

            anchors.centerIn: parent
            width: parent.width - 40
            flow: Flow.TopToBottom
            spacing: 2

            Item {
                id: header

                width: parent.width
                height: 30

                Text {
                    id: title

                    anchors.fill: parent
                    horizontalAlignment: Text.AlignRight
                    verticalAlignment: Text.AlignVCenter
                    font.pixelSize: Orb_Theme.menuTextSize
                    font.bold: true
                    color: Orb_Theme.listTitle
                }
            }
        }
    }

    states: [
        State {
            name: "Shown"
            PropertyChanges { target: orb_barList; anchors.rightMargin: 0 }
        },
        State {
            name: "Hidden"
        }
    ]
}
