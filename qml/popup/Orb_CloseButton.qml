import QtQuick 2.0
import QtQuick.Controls 1.1

// The button at the bottom of a panel.
Button {
    anchors.horizontalCenter: parent.horizontalCenter
    anchors.bottom: parent.bottom
    anchors.bottomMargin: -5
    text: qsTr("Close")
    isDefault: true
}
