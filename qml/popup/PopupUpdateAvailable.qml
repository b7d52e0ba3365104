import QtQuick 2.0
import QtQuick.Controls 1.1

// A newer version of the program: what it brings, and where it is.
Orb_PopupPanel {
    id: popupUpdateAvailable

    title: qsTr("New version available") + " " + orbView.newVersion()
    titleFont.underline: true
    closesByKey: false

    Label {
        y: 30
        width: parent.width
        elide: Text.ElideRight
        text: qsTr("A new version of this product has been released")
              + " (" + orbView.newVersionDate() + ")"
    }

    Orb_PanelScroll {
        y: 60
        height: parent.height - 90

        Text {
            width: parent.width
            wrapMode: Text.Wrap
            textFormat: Text.RichText
            color: "black"
            text: orbView.newChangeLog()

            onLinkActivated: root.openAddress(link)
        }
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: -10
        height: 40
        spacing: 10

        Button {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Open Website")

            onClicked: root.openAddress(orbGlobalObject.getEnterpriseWebLink())
        }

        Button {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Show History")

            onClicked: root.openAddress(orbView.urlHistory())
        }

        Button {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Close")

            onClicked: popupUpdateAvailable.close()
        }

        Button {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Download installer")

            onClicked: root.openAddress(orbView.urlDownload())
        }
    }
}
