import QtQuick 2.0
import QtQuick.Controls 1.1
import OrbixSight 1.0

// The bar of the wall: which videos to list, in which order and how many, and the user's login.
Rectangle {
    function checkHostingState() {
        var state = orbHostingManager.hostingState
        switch (state) {
        case OrbHostingManager.Disconnected:
            connection.text = qsTr("Connect")
            break
        case OrbHostingManager.Connecting:
            connection.text = "..."
            break
        case OrbHostingManager.Connected:
            connection.text = qsTr("Disconnect")
            break
        default:
            console.log("ERROR in Orb_HostingWall::checkHostingState() : hostingState '" + state
                        + "' is not supported.")
        }
    }

    function changeConnection() {
        if (orbHostingManager.hostingState === OrbHostingManager.Disconnected)
            root.onDisplayPopup("qrc:/qml/popup/PopupHostingConnection.qml", "Popup_Wall")
        else if (orbHostingManager.hostingState === OrbHostingManager.Connected)
            orbHostingManager.requestDisconnection()
    }

    height: 50
    color: "grey"

    Component.onCompleted: {
        orbHostingManager.hostingStateChanged.connect(checkHostingState)
        checkHostingState()
    }
    Component.onDestruction: orbHostingManager.hostingStateChanged.disconnect(checkHostingState)

    Row {
        anchors.centerIn: parent
        spacing: 10

        ComboBox {
            id: category

            textRole: "text"
            model: [
                { text: qsTr("Public videos"), value: OrbHostingManager.PublicVideos },
                { text: qsTr("My videos"), value: OrbHostingManager.MyVideos }
            ]

            Accessible.description: qsTr("Category")
        }

        ComboBox {
            textRole: "text"
            model: [
                { text: qsTr("Most recent"), value: "date" },
                { text: qsTr("Most viewed"), value: "views" }
            ]

            Accessible.description: qsTr("Order")

            onCurrentIndexChanged: orbHostingManager.setFirstOrderType(model[currentIndex].value)
        }

        ComboBox {
            model: ["20", "50", "100"]

            Accessible.description: qsTr("Videos at a time")

            onCurrentIndexChanged: orbHostingManager.setLimit(Number(model[currentIndex]))
        }

        Button {
            text: qsTr("Search")

            onClicked: orbHostingManager.requestContent(category.model[category.currentIndex].value)
        }

        Button {
            id: connection

            onClicked: changeConnection()
        }
    }
}
