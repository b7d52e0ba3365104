import QtQuick 2.0
import QtQuick.Controls 1.1
import "../theme"

// What of the program others have made, and under which licences.
Orb_PopupPanel {
    id: popupAboutThirdParty

    title: qsTr("Third party")

    Orb_PanelScroll {
        Text {
            width: parent.width
            wrapMode: Text.Wrap
            color: "black"
            text: orbGlobalObject.aboutThirdParty()
        }
    }

    Orb_CloseButton {
        onClicked: popupAboutThirdParty.close()
    }
}
