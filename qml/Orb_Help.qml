import QtQuick 2.0
import "theme"

// The shortcuts and the live values, over the picture.
Item {
    id: orb_help

    property int fps: 0 // of the panorama in the window

    anchors.fill: parent
    visible: false

    Text {
        anchors.left: parent.left
        anchors.leftMargin: 20
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 40
        font.pixelSize: 14
        color: Orb_Theme.text
        style: Text.Outline
        styleColor: Orb_Theme.veil
        text: "E : change effect \n"
              + "F : fullscreen on/off \n"
              + (orbSensor.available ? "G : gyro on/off \n" : "")
              + "H : show/hide shortcuts \n"
              + (orbOculus.available ? "O : oculus on/off \n" : "")
              + (orbLeap.available ? "L : leap motion on/off \n" : "")
              + "P : change projection \n"
              + "Escape : exit fullscreen \n"
              + "Space : play/pause \n"
              + "4/6 : move camera horizontally \n"
              + "2/8 : move camera vertically \n"
              + "Left/Right : previous/next media in playlist \n"
              + "Ctrl or Alt + Left/Right : slow seek rewind/forward \n"
              + "Ctrl or Alt + Up/Down : fast seek rewind/forward \n"
              + "+/- : change zoom factor \n"
              + "Wheel : change zoom factor \n"
              + "Click & Drag : move camera \n"
              + "Ctrl + N : open file/stream \n"
              + "Ctrl + Q : quit \n"
    }

    Text {
        anchors.right: parent.right
        anchors.rightMargin: 20
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 40
        font.pixelSize: 14
        color: Orb_Theme.text
        style: Text.Outline
        styleColor: Orb_Theme.veil
        text: "yaw : " + orbGlobalObject.yaw + "\n"
              + "pitch : " + orbGlobalObject.pitch + "\n"
              + "roll : " + orbGlobalObject.roll + "\n"
              + "fov : " + orbGlobalObject.fov + "\n"
              + "window fps : " + orb_help.fps + "\n"
              + (orbOculus.available ? "oculus fps : " + orbOculus.fps + "\n" : "")
              + "video decoding fps : " + orb_mediaLoader.mediaPlayer.fps + "\n"
    }
}
