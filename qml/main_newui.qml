import QtQuick 2.0
import QtQuick.Dialogs 1.1
import OrbixSight 1.0
import "popup/"
import "lib.js" as Lib

// The scene: the layers of the window from bottom to top, its states, and the keyboard.
FocusScope {
    id: root

    function changeState(newState, menuCategory) {
        if (newState !== root.state)
            root.state = newState
    }

    function onDisplayPopup(qmlFile, rootState) {
        orb_popup.load(qmlFile, rootState)
    }

    function onDisplayMessage(message, icon) {
        messageDialog.icon = icon ? icon : StandardIcon.Information
        messageDialog.text = Lib.asPlainText(message) // a server may have written it
        messageDialog.open()
        orbGlobalObject.restoreCursor()
    }

    // Opens a page in the user's browser, or says why it cannot.
    function openAddress(address) {
        if (address === "")
            onDisplayMessage(qsTr("This build has no address to open."))
        else if (!Qt.openUrlExternally(address))
            onDisplayMessage(qsTr("No program on this computer opens %1.").arg(address))
    }

    function popupOrWallOpen() {
        return state === "Popup" || state === "Popup_Wall" || state === "Wall"
    }

    function onMouseMoved() {
        if (popupOrWallOpen())
            return
        root.state = "ControlsPanel"
        timerHideControls.restart()
    }

    function seekAndShow(delta) {
        orb_mediaLoader.mediaPlayer.seekJump(delta)
        orb_playerImage.onShowPlayerText(Lib.formatTime(orb_mediaLoader.mediaPlayer.position))
    }

    function turn(yaw, pitch) {
        if (orbOculus.activated) {
            orbOculus.shiftYaw -= yaw
        } else {
            orbGlobalObject.yaw += yaw
            orbGlobalObject.pitch += pitch
        }
    }

    function onKeyPressed(event) {
        var control = event.modifiers & Qt.ControlModifier
        var seeking = event.modifiers & (Qt.AltModifier | Qt.ControlModifier)
        var player = orb_mediaLoader.mediaPlayer
        event.accepted = true

        if (event.key === Qt.Key_Q && control)
            orbGlobalObject.quit()
        else if (event.key === Qt.Key_Escape)
            orbView.fullScreenMode(false)
        else if (event.key === Qt.Key_F)
            orbView.fullScreenMode(!orbView.fullScreen)
        else if (event.key === Qt.Key_Minus)
            orb_videoArea.zoom(-1, 3)
        else if (event.key === Qt.Key_Plus || event.key === Qt.Key_Equal)
            orb_videoArea.zoom(1, 3)
        else if (event.key === Qt.Key_E)
            orbShaderCodeBuilder.setNextEffect()
        else if (event.key === Qt.Key_P)
            orbShaderCodeBuilder.setNextProjection()
        else if (event.key === Qt.Key_Space)
            orb_bar.playPause()
        else if (event.key === Qt.Key_O)
            orb_bar.oculusOnOff()
        else if (event.key === Qt.Key_L)
            orb_bar.leapOnOff()
        else if (event.key === Qt.Key_G)
            orb_bar.gyroOnOff()
        else if (event.key === Qt.Key_Left && seeking)
            seekAndShow(-1000)
        else if (event.key === Qt.Key_Right && seeking)
            seekAndShow(1000)
        else if (event.key === Qt.Key_Left && !orbGlobalObject.playListIsEmpty())
            orbGlobalObject.playListSetPrevious()
        else if (event.key === Qt.Key_Right && !orbGlobalObject.playListIsEmpty())
            orbGlobalObject.playListSetNext()
        else if (event.key === Qt.Key_Up && seeking)
            seekAndShow(player.duration / 20)
        else if (event.key === Qt.Key_Down && seeking)
            seekAndShow(-player.duration / 20)
        else if (event.key === Qt.Key_4)
            turn(-0.5, 0)
        else if (event.key === Qt.Key_6)
            turn(0.5, 0)
        else if (event.key === Qt.Key_8)
            turn(0, -0.5)
        else if (event.key === Qt.Key_2)
            turn(0, 0.5)
        else if (event.key === Qt.Key_H)
            orb_help.visible = !orb_help.visible
        else if (event.key === Qt.Key_N && control)
            onDisplayPopup("qrc:/qml/popup/PopupOpenFile.qml")
        else
            event.accepted = false
    }

    width: 1000
    height: 600
    focus: true
    state: "Video"

    Keys.onPressed: onKeyPressed(event)

    Component.onCompleted: {
        orb_videoArea.changeRootState.connect(changeState)
        orb_bar.changeRootState.connect(changeState)
        orb_popup.changeRootState.connect(changeState)
        orbView.displayPopup.connect(onDisplayPopup)
        orb_bar.displayPopup.connect(onDisplayPopup)
        if (!orbView.demoMode && !orbView.isNewVersionAvailable())
            onDisplayPopup("qrc:/qml/popup/PopupAbout.qml")
        orbView.displayMessage.connect(onDisplayMessage)
        orbVideoPlugin.displayMessage.connect(onDisplayMessage)
        orbHostingManager.displayMessage.connect(onDisplayMessage)
        orbView.mouseMoved.connect(onMouseMoved)
    }

    Orb_MediaLoader {
        id: orb_mediaLoader
    }

    Orb_VideoArea {
        id: orb_videoArea

        anchors.fill: parent
        mediaPlayer: orb_mediaLoader.mediaPlayer
    }

    Orb_Help {
        id: orb_help
    }

    Orb_LeapPointer {
        id: orb_leapPointer

        visible: orbLeap.activated
        enabled: orbLeap.activated
    }

    Orb_Bar {
        id: orb_bar

        mediaPlayer: orb_mediaLoader.mediaPlayer

        Component.onCompleted: orb_videoArea.showVideoPlugins.connect(showVideoPluginsList)
    }

    Orb_PlayerImage {
        id: orb_playerImage

        Component.onCompleted: orb_bar.showPlayerImage.connect(onShowPlayerImage)
    }

    Orb_Popup {
        id: orb_popup
    }

    MessageDialog {
        id: messageDialog

        icon: StandardIcon.Information

        onAccepted: close()
    }

    Loader {
        id: orb_debugLoader

        anchors.fill: parent
        source: typeof orbDebug === "undefined" ? "" : "qrc:/qml/debug/Orb_Debug.qml"
    }

    OrbDropArea {
        id: orb_dropArea

        anchors.fill: parent

        onFilePathListChanged: orbGlobalObject.openFiles(orb_dropArea.filePathList)
    }

    Timer {
        id: timerHideControls

        interval: 3000

        onTriggered: {
            if (!popupOrWallOpen() && !orb_bar.containsMouse)
                root.state = "Video"
        }
    }

    states: [
        State {
            name: "Video"
            PropertyChanges { target: orb_videoArea; state: "On" }
            PropertyChanges { target: orb_bar; state: "Off" }
            PropertyChanges { target: orb_popup; state: "Off" }
        },
        State {
            name: "ControlsPanel"
            PropertyChanges { target: orb_videoArea; state: "Off" }
            PropertyChanges { target: orb_bar; state: "On" }
            PropertyChanges { target: orb_popup; state: "Off" }
        },
        State {
            name: "Popup"
            PropertyChanges { target: orb_videoArea; state: "Off" }
            PropertyChanges { target: orb_bar; state: "Off" }
            PropertyChanges { target: orb_popup; state: "On" }
        },
        State {
            name: "Popup_Wall"
            PropertyChanges { target: orb_videoArea; state: "Off" }
            PropertyChanges { target: orb_bar; state: "Off" }
            PropertyChanges { target: orb_popup; state: "On" }
        },
        State {
            name: "Wall"
            PropertyChanges { target: orb_videoArea; state: "Off" }
            PropertyChanges { target: orb_bar; state: "Off" }
            PropertyChanges { target: orb_popup; state: "Off" }
        }
    ]
}
