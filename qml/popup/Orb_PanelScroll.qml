import QtQuick 2.0
import QtQuick.Controls 1.1
import "../theme"

// A white sheet in a panel under its title, that scrolls when its children are higher.
ScrollView {
    id: scrollView

    default property alias sheet: sheet.data

    y: 30
    width: parent.width
    height: parent.height - 60
    frameVisible: true
    highlightOnFocus: true

    Item {
        width: scrollView.width - 20
        height: sheet.height + 2 * Orb_Theme.panelMargin

        // The text is black under every palette.
        Rectangle {
            width: scrollView.width
            height: Math.max(parent.height, scrollView.height)
            color: "white"
        }

        Column {
            id: sheet

            x: Orb_Theme.panelMargin
            y: Orb_Theme.panelMargin
            width: parent.width - Orb_Theme.panelMargin
            spacing: 20
        }
    }
}
