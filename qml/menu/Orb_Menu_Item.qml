import QtQuick 2.0
import "../theme"
import "../widgets"

// A row of a menu; its user replaces `action`.
Rectangle {
    id: orb_menuItem

    property alias label: text.text
    property bool currentItem: false
    property bool shown: true // what is not shown leaves no gap

    function action() {
        console.log("WARNING in Orb_Menu_Item : function action is not implemented by user.")
    }

    width: parent.width
    height: shown ? __menuItemHeight : 0
    visible: shown
    color: Orb_Theme.veil
    clip: true

    Accessible.role: Accessible.MenuItem
    Accessible.name: label
    Accessible.checkable: currentItem
    Accessible.checked: currentItem
    Accessible.onPressAction: action()

    Text {
        id: text

        width: parent.width - 10
        height: parent.height
        color: currentItem ? Orb_Theme.accent : Orb_Theme.text
        font.pixelSize: Orb_Theme.menuTextSize
        font.bold: true
        horizontalAlignment: Text.AlignRight
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    Orb_MouseArea {
        anchors.fill: parent

        onPressed: orb_menuItem.action()
    }
}
