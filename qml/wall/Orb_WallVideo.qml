import QtQuick 2.0
import OrbixSight 1.0
import "../widgets"
import "videoAddress.js" as VideoAddress

// One hosted video in the grid: a click on its picture plays it, one on its user's name lists all
// that the user has.
Item {
    id: orb_wallVideo

    function open() {
        var address = VideoAddress.ofVideo(model.sourceUrl, model.presets)
        if (address === "") {
            root.onDisplayMessage(qsTr("This video has no address."))
            return
        }
        root.state = "Video"
        orbGlobalObject.openFile(address)
    }

    function listUser() {
        orbHostingManager.requestContent(OrbHostingManager.UserVideos, 0, model.userName)
    }

    enabled: model.index >= 0 // a row that has gone knows nothing of its video

    Image {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 200
        height: 100
        asynchronous: true
        sourceSize: Qt.size(width, height)
        fillMode: Image.PreserveAspectFit
        source: VideoAddress.ofPicture(model.thumbLink)

        Orb_MouseArea {
            anchors.fill: parent

            Accessible.role: Accessible.Button
            Accessible.name: model.title === "" ? qsTr("Video") : model.title
            Accessible.onPressAction: open()

            onClicked: open()
        }
    }

    Orb_WallText {
        y: 110
        text: model.title
    }

    Orb_WallText {
        y: 130
        text: model.creationDate
    }

    Orb_WallText {
        y: 150
        text: model.userName
        font.underline: userMouseArea.containsMouse

        Accessible.role: Accessible.Link
        Accessible.name: text
        Accessible.onPressAction: listUser()

        Orb_MouseArea {
            id: userMouseArea

            anchors.fill: parent
            hoverEnabled: true

            onClicked: listUser()
        }
    }
}
